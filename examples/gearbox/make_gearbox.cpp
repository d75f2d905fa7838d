#include "gearbox/gearbox_model.h"
#include "gearbox/glb_writer.h"
#include "gearbox/stl_writer.h"

#include <exception>
#include <filesystem>
#include <iostream>

// Writes the sample assembly: as one binary glTF file when the name ends so, else one binary STL file a part
// into a directory that is made if need be.
int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: make_gearbox FILE.glb | DIRECTORY\n";
        return 2;
    }
    try {
        const std::filesystem::path target = argv[1];
        const std::vector<gearbox::Part> parts = gearbox::MakeGearbox(gearbox::FaultyDimensions());
        if (target.extension() == ".glb") {
            gearbox::WriteGlb(target, parts);
        } else {
            std::filesystem::create_directories(target);
            for (const gearbox::Part& part : parts)
                gearbox::WriteStl(target / (part.name + ".stl"), part.solid);
        }
    } catch (const std::exception& error) {
        std::cerr << "make_gearbox: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
