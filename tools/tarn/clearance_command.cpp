#include "clearance_command.h"

#include "check_run.h"
#include "clearance_check.h"
#include "readers/coordinate.h"
#include "readers/printable_text.h"
#include "readers/program_error.h"

#include "tarn/factory.h"

#include <fmt/format.h>

#include <cmath>
#include <utility>

namespace tarn::program {

double ParseClearance(std::string_view text) {
    try {
        const double clearance = ParseCoordinate(text, 1);
        if (clearance >= 0) return std::abs(clearance);  // -0 is 0
    } catch (const FormatError&) {
        // Said below: what is wrong matters less here than what is right.
    }
    throw ProgramError(fmt::format(
        "--clearance: '{}' is not a length in millimetres; it must be 0 or more, and finite", Excerpt(text)));
}

bool RunClearance(const ClearanceOptions& options) {
    auto check = MakeClearanceCheck(tarn::make_shared_proximity_configuration(), options.clearance);
    return CheckAssembly(std::move(check), options.assembly, options.run, "clearance");
}

}  // namespace tarn::program
