#include "record/recorder.h"

#include "tarn/factory.h"

namespace tarn {

IRecorder* make_recorder() {
    return make_unique_recorder().release();
}

std::unique_ptr<IRecorder> make_unique_recorder() {
    return std::make_unique<details::Recorder>();
}

}  // namespace tarn
