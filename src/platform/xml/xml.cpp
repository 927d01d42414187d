#include "platform/xml/xml.h"

#include <generalutilities/error.h>

#include "platform/files/utf8.h"

#include <new>
#include <ostream>
#include <pugixml.hpp>

namespace generalutilities::xml {
namespace {

/// pugixml hands out null nodes when memory runs out.
template <class Node>
Node Made(Node node) {
    return node ? node : throw std::bad_alloc();
}

class DocumentWalk final : public Walk {
  public:
    DocumentWalk(std::string source, const std::string& name) : bytes(std::move(source)) {
        const pugi::xml_parse_result result = document.load_buffer_inplace(
            bytes.data(), bytes.size(), pugi::parse_default | pugi::parse_ws_pcdata);
        if (result.status == pugi::status_out_of_memory) {
            throw std::bad_alloc();
        }
        if (!result) {
            throw Error(ErrorInvalidData, name + ": byte offset " + std::to_string(result.offset) +
                                              ": this is no XML: " + result.description());
        }
    }

    bool Next() override {
        if (!node) {
            node = document.document_element();
            kind = Event::Start;
            return static_cast<bool>(node);
        }
        if (kind == Event::Start) {
            Enter(node.first_child(), node);
        } else if (node == document.document_element()) {
            return false;
        } else {
            Enter(node.next_sibling(), node.parent());
        }
        return true;
    }

    Event Kind() const override { return kind; }
    std::string_view Name() const override {
        const std::string_view name = node.name();
        return name.substr(name.find(':') + 1);
    }
    std::optional<std::u16string> Attribute(const char* name) const override {
        const pugi::xml_attribute attribute = node.attribute(name);
        return attribute ? std::optional(files::FromUtf8(attribute.value())) : std::nullopt;
    }
    std::u16string Text() const override { return files::FromUtf8(node.value()); }
    int Percent() const override {
        const std::ptrdiff_t offset = node.offset_debug();
        return offset < 0
                   ? 0
                   : static_cast<int>(100 * static_cast<std::size_t>(offset) / (bytes.size() + 1));
    }

  private:
    /// The next event is the start or the text of `next`, else the end of what surrounds it.
    void Enter(pugi::xml_node next, pugi::xml_node around) {
        node = next ? next : around;
        kind = !next ? Event::End : next.type() == pugi::node_element ? Event::Start : Event::Text;
    }

    std::string bytes;
    pugi::xml_document document;
    pugi::xml_node node;
    Event kind = Event::Start;
};

class StreamOutput final : public pugi::xml_writer {
  public:
    explicit StreamOutput(std::ostream& stream) : output(stream) {}
    void write(const void* data, std::size_t size) override {
        output.write(static_cast<const char*>(data), static_cast<std::streamsize>(size));
    }

  private:
    std::ostream& output;
};

}  // namespace

bool IsCarried(char16_t unit) {
    return unit == u'\t' || unit == u'\n' || (unit >= 0x20 && unit < 0xD800) ||
           (unit >= 0xE000 && unit < 0xFFFE);
}

std::unique_ptr<Walk> Read(std::string bytes, const std::string& name) {
    return std::make_unique<DocumentWalk>(std::move(bytes), name);
}

struct Writer::State {
    pugi::xml_document document;
    pugi::xml_node current = document;
};

Writer::Writer() : state(std::make_unique<State>()) {}
Writer::~Writer() = default;

void Writer::Open(const char* name) {
    state->current = Made(state->current.append_child(name));
}

void Writer::Attribute(const char* name, std::u16string_view value) {
    if (!Made(state->current.append_attribute(name)).set_value(files::ToUtf8Lossy(value).c_str())) {
        throw std::bad_alloc();
    }
}

void Writer::Text(std::u16string_view text) {
    if (!Made(state->current.append_child(pugi::node_pcdata))
             .set_value(files::ToUtf8Lossy(text).c_str())) {
        throw std::bad_alloc();
    }
}

void Writer::Close() {
    state->current = state->current.parent();
}

void Writer::Save(std::ostream& output) const {
    StreamOutput stream(output);
    state->document.save(stream, "", pugi::format_raw, pugi::encoding_utf8);
    output << '\n';
}

}  // namespace generalutilities::xml
