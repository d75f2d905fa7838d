#include "tarn/version.h"

#include <sstream>

namespace tarn {

std::string GetVersionText() {
    std::ostringstream text;
    text << "Tarn"
         << " v"
         << "0.4.0.0" << '\n';
    return text.str();
}

}  // namespace tarn
