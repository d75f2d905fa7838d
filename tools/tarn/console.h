#pragma once

#include <string_view>

namespace tarn::program {

/// What the user sees on standard error while work goes on: warnings, one line each, and, on a terminal, one
/// status line that is written over and leaves no trace. A quiet console shows nothing.
class Console final {
public:
    explicit Console(bool is_quiet);
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;
    ~Console();

    void ShowStatus(std::string_view status);
    void ClearStatus();
    void Warn(std::string_view subject, std::string_view warning);

private:
    bool is_quiet_;
    bool shows_status_;
    bool status_is_visible_ = false;
};

/// Writes an error as one line to standard error.
void PrintError(std::string_view error);

/// Writes the text to standard output, to the last byte. Throws `ProgramError` where that fails.
void PrintResult(std::string_view text);

}  // namespace tarn::program
