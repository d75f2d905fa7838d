#include "gearbox/gearbox_model.h"
#include "gearbox/stl_writer.h"

#include <exception>
#include <filesystem>
#include <iostream>

// Writes the sample assembly, one binary STL file a part, into a directory that is made if need be.
int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: make_gearbox DIRECTORY\n";
        return 2;
    }
    try {
        const std::filesystem::path directory = argv[1];
        std::filesystem::create_directories(directory);
        for (const gearbox::Part& part : gearbox::MakeGearbox(gearbox::FaultyDimensions())) {
            gearbox::WriteStl(directory / (part.name + ".stl"), part.solid);
        }
    } catch (const std::exception& error) {
        std::cerr << "make_gearbox: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
