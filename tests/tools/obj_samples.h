#pragma once

#include <string>
#include <vector>

namespace tarn::program {

/// Small files that use all that the reader knows.
inline std::vector<std::string> ObjSamples() {
    return {
        "# made by hand\nmtllib none.mtl\nv 0 0 0\nv 1.5 0 0\nv 0 -2.25 0.125\nv 2 2 2\n"
        "vt 0 0\nvn 0 0 1\nusemtl none\nf 1/1/1 2/1/1 3/1/1\nf -4//-1 -3//-1 -2//-1 -1//-1\n",
        "v 0 0 0 1\nv 1 0 0 0.5 0.5 0.5\nv 0 1 0 \\\n 1 1 1 0.5\nf 1 2 3\no first\ng group\ns off\n"
        "f 1 3 2\no second\nv 1e-3 -1E3 .5\nf 1/1 \\\r\n2/1 4/1\r\n",
    };
}

}  // namespace tarn::program
