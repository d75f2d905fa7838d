// The one file that compiles the glTF library, which comes as a header. What it leaves out is set for all
// files in the build description: images and access to files. Its writing half needs file streams even so.
#include <fstream>

#define TINYGLTF_IMPLEMENTATION
#include <tiny_gltf.h>
