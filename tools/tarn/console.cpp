#include "console.h"

#include "readers/printable_text.h"
#include "readers/program_error.h"
#include "readers/system_cause.h"
#include "terminal.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <string>

namespace tarn::program {
namespace {

/// Nobody can be told when standard error itself fails, so its failures count as written.
void WriteToStandardError(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fflush(stderr);
}

}  // namespace

Console::Console(bool is_quiet)
    : is_quiet_(is_quiet),
      shows_status_(!is_quiet && StandardErrorIsTerminal()) {}

Console::~Console() {
    ClearStatus();
}

void Console::ShowStatus(std::string_view status) {
    if (!shows_status_) return;
    ClearStatus();
    WriteToStandardError(Printable(status));
    status_is_visible_ = true;
}

void Console::ClearStatus() {
    if (!status_is_visible_) return;
    WriteToStandardError("\r\x1b[K");
    status_is_visible_ = false;
}

void Console::Warn(std::string_view subject, std::string_view warning) {
    if (is_quiet_) return;
    ClearStatus();
    WriteToStandardError(Printable(fmt::format("tarn: warning: {}: {}", subject, warning)) + "\n");
}

void PrintError(std::string_view error) {
    WriteToStandardError("tarn: " + Printable(error) + "\n");
}

void PrintResult(std::string_view text) {
    errno = 0;
    const bool is_written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    if (!is_written || std::fflush(stdout) != 0) {
        throw ProgramError("standard output: cannot be written" + SystemCause());
    }
}

}  // namespace tarn::program
