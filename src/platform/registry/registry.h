#pragma once

#include <generalutilities/status.h>

#include <functional>
#include <map>
#include <string>
#include <string_view>

/// The registry: a tree of keys with values, kept in one text file in the published export notation
/// (docs/registry.md).
///
/// Keys are paths such as `HKEY_CLASSES_ROOT\CLSID\{...}`; keys and value names compare without
/// regard to the case of A to Z. All texts are UTF-8.
namespace generalutilities::registry {

inline constexpr HRESULT REGDB_E_READREGDB = MakeStatus(0x80040150);
inline constexpr HRESULT REGDB_E_WRITEREGDB = MakeStatus(0x80040151);

/// The tree in memory.
class Tree {
  public:
    /// The text of a value ("" names a key's default value); null if there is none or it is no
    /// text.
    const std::string* Find(std::string_view key, std::string_view valueName) const;
    bool HasKey(std::string_view key) const;
    bool HasKeysBelow(std::string_view key) const;

    /// Makes a key and the keys above it.
    void AddKey(std::string_view key);
    /// Makes the key and sets a text value in it.
    void Set(std::string_view key, std::string_view valueName, std::string_view text);
    /// Removes a key with all below it; a missing key is no error.
    void RemoveKey(std::string_view key);

    /// The whole tree in the export notation; the same tree gives the same bytes.
    std::string Serialize() const;

    /// Reads the export notation; both forms of line end. On success 0, else the number of the line
    /// that is wrong, and the tree is left empty.
    std::size_t Parse(std::string_view text);

    friend bool operator==(const Tree&, const Tree&) = default;

  private:
    struct Value {
        std::string name;
        std::string data;  ///< of a text: the text; of another type: the notation as it stands
        bool isText = true;

        friend bool operator==(const Value&, const Value&) = default;
    };
    struct Key {
        std::string path;
        std::map<std::string, Value> values;  ///< by name in lower case

        friend bool operator==(const Key&, const Key&) = default;
    };

    bool ParseValue(std::string_view line, Key& key);

    /// By path in lower case, "\" as U+0001, so that the keys below a key follow it directly.
    std::map<std::string, Key> keys;
};

/// The file: `generalutilities/registry.reg` under `$XDG_DATA_HOME`, by default `~/.local/share`.
/// Empty when neither that nor `$HOME` is set.
std::string FilePath();

/// Reads the file; one that does not exist gives an empty tree.
HRESULT Read(Tree& tree);

/// Reads, changes and replaces the file as one step that no other process comes between and no
/// crash leaves half done. A file that cannot be parsed is left alone.
HRESULT Update(const std::function<void(Tree&)>& change);

}  // namespace generalutilities::registry
