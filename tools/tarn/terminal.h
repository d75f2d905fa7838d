#pragma once

namespace tarn::program {

/// Whether standard error goes to a terminal, where a line may be written over and over. The one question for
/// which the standard library has no answer: the systems' own calls stay in this file's implementation.
bool StandardErrorIsTerminal();

}  // namespace tarn::program
