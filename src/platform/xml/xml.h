#pragma once

#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

/// XML documents on pugixml: read as a walk in the order of the document, written as they are told.
namespace generalutilities::xml {

/// Whether a unit of a text can stand in a document at all: XML 1.0 has neither most of the control
/// characters nor U+FFFE and U+FFFF nor half a surrogate pair, and it turns a carriage return into
/// a line feed. A surrogate counts as half a pair here.
bool IsCarried(char16_t unit);

/// A document in the order in which it stands in the file.
class Walk {
  public:
    enum class Event { Start, Text, End };

    virtual ~Walk() = default;
    /// Goes on to the next event; false behind the end of the root element.
    virtual bool Next() = 0;
    virtual Event Kind() const = 0;
    /// At a start or an end: the element's name, without a prefix.
    virtual std::string_view Name() const = 0;
    /// At a start: the attribute of that whole name, if there is one.
    virtual std::optional<std::u16string> Attribute(const char* name) const = 0;
    /// At a text: its characters, blanks included.
    virtual std::u16string Text() const = 0;
    /// How far the walk is, in percent of the document's bytes.
    virtual int Percent() const = 0;
};

/// Reads a whole document. It fetches nothing, and the only entities it knows are the five of the
/// standard. Throws `Error` with `name` and the offset of what is no XML.
std::unique_ptr<Walk> Read(std::string bytes, const std::string& name);

/// Builds a document from its root on. Texts hold carried units and whole pairs alone.
class Writer {
  public:
    Writer();
    ~Writer();
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    void Open(const char* name);
    /// Of the element opened last, before anything else is put into it.
    void Attribute(const char* name, std::u16string_view value);
    void Text(std::u16string_view text);
    void Close();
    /// Writes the document as UTF-8, with its declaration and no blank that was not told.
    void Save(std::ostream& output) const;

  private:
    struct State;
    std::unique_ptr<State> state;
};

}  // namespace generalutilities::xml
