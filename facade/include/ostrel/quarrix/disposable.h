#pragma once

#include "ostrel/quarrix/export.h"
#include "ostrel/quarrix/object.h"

namespace Ostrel::Quarrix::Collisions {

/// What can be given up before its last reference goes. Both ways lead to one clean-up, which runs once.
class QUARRIX_API IDisposable : public virtual Object {
public:
    /// Gives up what the object holds; a second call does nothing.
    virtual void Dispose() = 0;
};

/// An object that owns nothing and only remembers that it was disposed. Not for use from several threads
/// while one of them disposes.
class QUARRIX_API DisposableRecord : public IDisposable {
public:
    void Dispose() override { disposed_ = true; }

protected:
    /// Throws `ObjectDisposedException` with an empty object name.
    void RequireNotDisposed() const;

private:
    bool disposed_ = false;
};

}  // namespace Ostrel::Quarrix::Collisions
