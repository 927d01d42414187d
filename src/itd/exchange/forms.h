#pragma once

#include <generalutilities/itd/exchange.h>

#include <memory>
#include <string>
#include <string_view>

/// The writers and readers of the single forms, and what they share.
namespace generalutilities {

std::unique_ptr<ExchangeWriter> CreateTsvWriter(std::ostream& output);
std::unique_ptr<ExchangeWriter> CreateJsonLinesWriter(std::ostream& output);
std::unique_ptr<ExchangeWriter> CreateXliffWriter(std::ostream& output,
                                                  const ExchangeHeading& heading);

std::unique_ptr<ExchangeReader> OpenTsv(std::u16string_view path);
std::unique_ptr<ExchangeReader> OpenJsonLines(std::u16string_view path);
std::unique_ptr<ExchangeReader> OpenXliff(std::u16string_view path);

/// All bytes of a file. Throws `Error`.
std::string ReadWholeFile(std::u16string_view path);

/// The shortest decimal form that is read back as the same number; "nan" and "inf" as such.
std::string ScoreText(double score);

/// The segment text of a cell; what is wrong with it becomes the row's fault, and names the cell.
void ParseCell(std::string_view name, std::u16string_view text, SegmentPieces& pieces,
               std::string& fault);

}  // namespace generalutilities
