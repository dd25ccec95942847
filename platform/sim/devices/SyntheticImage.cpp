#include "SyntheticImage.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace bw::sim {

namespace {

constexpr std::size_t kWidth = 640;
constexpr int kBlock = 8;  // serial bit blocks: size and pitch in pixels
constexpr int kBlockPitch = 10;
constexpr int kSerialBits = 32;
constexpr float kHorizonHalfWidth = 1.5f;

struct Bgra {
    std::uint8_t b, g, r, a;
};

void put(ImageBGRA& image, std::size_t x, std::size_t y, Bgra c) {
    std::uint8_t* p = &image.pixels[(y * image.width + x) * 4];
    p[0] = c.b;
    p[1] = c.g;
    p[2] = c.r;
    p[3] = c.a;
}

std::uint8_t ramp(std::size_t i, std::size_t n) {
    return static_cast<std::uint8_t>(n > 1 ? 255 * i / (n - 1) : 0);
}

void drawBackground(ImageBGRA& image, float rollRad) {
    const float cx = 0.5f * image.width, cy = 0.5f * image.height;
    const float s = std::sin(rollRad), c = std::cos(rollRad);
    for (std::size_t y = 0; y < image.height; ++y) {
        for (std::size_t x = 0; x < image.width; ++x) {
            // Signed distance from the horizon through the centre; negative is sky.
            const float d = -(x - cx) * s + (y - cy) * c;
            Bgra px{ramp(x, image.width), ramp(y, image.height), 96, 255};
            if (std::abs(d) < kHorizonHalfWidth) {
                px = {255, 255, 255, 255};
            } else if (d < 0.f) {
                px.b = static_cast<std::uint8_t>(std::min(255, px.b + 80));
            }
            put(image, x, y, px);
        }
    }
}

void drawSerial(ImageBGRA& image, unsigned serial) {
    for (int bit = 0; bit < kSerialBits; ++bit) {
        const Bgra c = (serial >> (kSerialBits - 1 - bit)) & 1u ? Bgra{255, 255, 255, 255}
                                                                : Bgra{0, 0, 0, 255};
        const std::size_t x0 = kBlock + bit * kBlockPitch;
        for (std::size_t y = kBlock; y < kBlock * 2 && y < image.height; ++y) {
            for (std::size_t x = x0; x < x0 + kBlock && x < image.width; ++x) {
                put(image, x, y, c);
            }
        }
    }
}

}  // namespace

ImageBGRA makeSyntheticImage(const Resolution& sensor, float rollRad, unsigned serial) {
    ImageBGRA image;
    image.width = kWidth;
    image.height = sensor.width > 0
                       ? std::max<std::size_t>(1, kWidth * sensor.height / sensor.width)
                       : kWidth * 10 / 16;
    image.pixels.resize(image.width * image.height * 4);
    drawBackground(image, rollRad);
    drawSerial(image, serial);
    return image;
}

}  // namespace bw::sim
