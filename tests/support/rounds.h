#pragma once

#include <cstdlib>

namespace tarn::test {

/// How many rounds a random test goes: as many as usual, times what `make stress` asks for.
inline unsigned Rounds(unsigned usual) {
    const char* const factor = std::getenv("TARN_STRESS");
    return factor ? usual * static_cast<unsigned>(std::strtoul(factor, nullptr, 10)) : usual;
}

}  // namespace tarn::test
