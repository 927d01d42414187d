#include "byte_input.h"

#include "failure.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <iterator>

namespace generalutilities::cli {
std::string InputName(const std::string& input) {
    return input == "-" ? "standard input" : input;
}

std::string ReadInput(const std::string& input) {
    std::ifstream file;
    if (input != "-") {
        file = OpenInput(input);
    }
    std::istream& stream = input == "-" ? std::cin : file;
    std::string bytes{std::istreambuf_iterator<char>(stream), {}};
    CheckEnd(stream, InputName(input), bytes.size());
    return bytes;
}

std::ifstream OpenInput(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    file.peek();  // a folder can be opened
    if (!file.is_open() || file.bad()) {
        throw Failure(path + " cannot be read: " + std::strerror(errno));
    }
    file.clear();  // an empty file has ended
    return file;
}

void CheckEnd(const std::istream& stream, const std::string& name, std::uint64_t offset) {
    // Standard input takes its bytes from stdin, which alone knows of failures.
    if (stream.bad() || (&stream == &std::cin && std::ferror(stdin) != 0)) {
        throw Failure(name + " cannot be read behind byte " + std::to_string(offset) + ": " +
                      std::strerror(errno));
    }
}

}  // namespace generalutilities::cli
