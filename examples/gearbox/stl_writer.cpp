#include "gearbox/stl_writer.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <stdexcept>
#include <string>

namespace gearbox {

namespace {

void AppendBytes(std::string& out, std::uint32_t value, int count) {
    for (int i = 0; i < count; ++i) out.push_back(static_cast<char>(value >> (8 * i) & 0xff));
}

void AppendVector(std::string& out, double x, double y, double z) {
    for (const double value : {x, y, z})
        AppendBytes(out, std::bit_cast<std::uint32_t>(static_cast<float>(value)), 4);
}

void AppendNormal(std::string& out, const tarn::TriangleData& t) {
    const double ux = t.v1x - t.v0x, uy = t.v1y - t.v0y, uz = t.v1z - t.v0z;
    const double vx = t.v2x - t.v0x, vy = t.v2y - t.v0y, vz = t.v2z - t.v0z;
    const double x = uy * vz - uz * vy, y = uz * vx - ux * vz, z = ux * vy - uy * vx;
    const double length = std::hypot(x, y, z);
    AppendVector(out, x / length, y / length, z / length);
}

}  // namespace

void WriteStl(const std::filesystem::path& file, const Solid& solid) {
    constexpr std::size_t kHeaderSize = 80;
    constexpr std::size_t kTriangleSize = 50;
    std::string bytes(kHeaderSize, '\0');
    bytes.reserve(kHeaderSize + 4 + kTriangleSize * solid.size());
    AppendBytes(bytes, static_cast<std::uint32_t>(solid.size()), 4);
    for (const tarn::TriangleData& t : solid) {
        AppendNormal(bytes, t);
        AppendVector(bytes, t.v0x, t.v0y, t.v0z);
        AppendVector(bytes, t.v1x, t.v1y, t.v1z);
        AppendVector(bytes, t.v2x, t.v2y, t.v2z);
        AppendBytes(bytes, 0, 2);
    }
    std::ofstream stream(file, std::ios::binary);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    if (!stream) throw std::runtime_error("Cannot write " + file.string() + ".");
}

}  // namespace gearbox
