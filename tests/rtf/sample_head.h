#pragma once

#include "recording_reader.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace generalutilities::testing {

/// A head with a few fonts and styles; `Prepare` ends behind it, on a `\pard`.
inline const std::string Head =
    "{\\rtf1\\ansi\\ansicpg1251\\uc1{\\fonttbl{\\f0\\fnil\\fcharset0 A;}{\\f1\\fcharset238 B;}"
    "{\\f2\\fcharset204 C;}{\\f3\\fcharset128 D;}{\\f4\\fcharset2 E;}{\\f5\\fcharset200 F;}}"
    "{\\stylesheet{\\s0 Normal;}{\\*\\cs10 Code;}}\\f0";

/// The whole text of a body behind `Head`; a closing brace ends its last run.
inline std::u16string TextOf(std::string_view body) {
    RecordingReader reader;
    EXPECT_TRUE(reader.Open(FileOf(Head + "\\pard " + std::string(body) + "}")));
    EXPECT_TRUE(reader.Prepare());
    EXPECT_FALSE(reader.Parse());
    return reader.events.text;
}

}  // namespace generalutilities::testing
