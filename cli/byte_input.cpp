#include "byte_input.h"

#include "failure.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>

namespace generalutilities::cli {
namespace {

std::string ReadAll(std::istream& stream, const std::string& name) {
    std::string bytes{std::istreambuf_iterator<char>(stream), {}};
    if (stream.bad()) {
        throw Failure(name + " cannot be read behind byte " + std::to_string(bytes.size()));
    }
    return bytes;
}

}  // namespace

std::string InputName(const std::string& input) {
    return input == "-" ? "standard input" : input;
}

std::string ReadInput(const std::string& input) {
    if (input == "-") {
        return ReadAll(std::cin, InputName(input));
    }
    std::ifstream file(input, std::ios::binary);
    file.peek();  // a folder can be opened
    if (!file.is_open() || file.bad()) {
        throw Failure(input + " cannot be read: " + std::strerror(errno));
    }
    file.clear();  // an empty file has ended
    return ReadAll(file, input);
}

}  // namespace generalutilities::cli
