// tarn-mkimage: puts the header of a firmware image in front of a file.
#include <zlib.h>

#include <CLI/CLI.hpp>
#include <fstream>
#include <iostream>
#include <iterator>

#include "host/services/image_header.h"
#include "module/common/files.h"

namespace {

struct Options {
    std::string version;
    std::string description;
    std::string payload;
    std::string image;
};

// "MAJOR.MINOR.RELEASE" or with a fourth number; false for another text.
bool parse_version(const std::string &text, tarn::host::ImageHeader &header) {
    constexpr std::uint32_t highest[] = {255, 255, 65535, UINT32_MAX};
    std::uint32_t numbers[4] = {};
    std::size_t count = 0;
    std::istringstream parts(text);
    for (std::string part; std::getline(parts, part, '.'); ++count) {
        if (count == 4 || part.empty() || part.size() > 10 ||
            part.find_first_not_of("0123456789") != std::string::npos || std::stoull(part) > highest[count]) {
            return false;
        }
        numbers[count] = static_cast<std::uint32_t>(std::stoull(part));
    }
    header.version = numbers[0] << 24 | numbers[1] << 16 | numbers[2];
    header.fourth_number = numbers[3];
    return count >= 3;
}

int run(const Options &options) {
    tarn::host::ImageHeader header;
    header.description = options.description;
    if (!parse_version(options.version, header)) {
        std::cerr << "tarn-mkimage: " << options.version << ": not a version such as 1.2.3 or 1.2.3.4\n";
        return 1;
    }
    if (header.description.size() > tarn::host::longest_image_description) {
        std::cerr << "tarn-mkimage: the description is longer than " << tarn::host::longest_image_description
                  << " bytes\n";
        return 1;
    }
    std::ifstream from(options.payload, std::ios::binary);
    const std::vector<char> payload{std::istreambuf_iterator<char>(from), std::istreambuf_iterator<char>()};
    if (!from || payload.size() > UINT32_MAX) {
        std::cerr << "tarn-mkimage: " << options.payload << ": cannot read\n";
        return 1;
    }
    header.payload_size = static_cast<std::uint32_t>(payload.size());
    header.payload_crc = static_cast<std::uint32_t>(
        crc32(0, reinterpret_cast<const Bytef *>(payload.data()), static_cast<uInt>(payload.size())));
    const std::vector<std::uint8_t> bytes = tarn::host::make_image_header(header);
    std::string image(bytes.begin(), bytes.end());
    image.append(payload.data(), payload.size());
    if (tarn::replace_file(options.image, image) != tarn::Written::whole) {
        std::cerr << "tarn-mkimage: " << options.image << ": cannot write\n";
        return 1;
    }
    return 0;
}

}  // namespace

int main(int argc, char **argv) try {
    CLI::App app("tarn-mkimage - makes a firmware image of a file", "tarn-mkimage");
    app.footer(
        "EXIT STATUS\n  0  the image is written\n  1  a file cannot be read or written, or the version is "
        "wrong\n\n"
        "EXAMPLE\n  tarn-mkimage --version-number 3.38.1 --description 'ONT firmware' firmware.bin "
        "image.bin");
    app.set_version_flag("--version", std::string("tarn-mkimage ") + TARN_VERSION);
    Options options;
    app.add_option("--version-number", options.version, "the image's version, three or four numbers")
        ->required()
        ->type_name("A.B.C[.D]");
    app.add_option("--description", options.description, "at most 1023 bytes")->type_name("TEXT");
    app.add_option("payload", options.payload, "the file that the image carries")->required();
    app.add_option("image", options.image, "the image to write")->required();
    CLI11_PARSE(app, argc, argv);
    return run(options);
} catch (const std::exception &error) {
    std::cerr << "tarn-mkimage: " << error.what() << '\n';
    return 1;
}
