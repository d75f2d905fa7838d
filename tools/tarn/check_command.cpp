#include "check_command.h"

#include "check_run.h"
#include "interference_check.h"

#include "tarn/factory.h"

#include <utility>

namespace tarn::program {

bool RunCheck(const CheckOptions& options) {
    auto check = MakeInterferenceCheck(tarn::make_shared_configuration(), options.policy);
    return CheckAssembly(std::move(check), options.assembly, options.run, "check");
}

}  // namespace tarn::program
