#include "platform/advapi32/RegistryText.h"

#include "com/Checksum.h"
#include "platform/advapi32/RegistryValueText.h"
#include "platform/kernel32/PathText.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace
{
constexpr std::string_view Heading = "Windows Registry Editor Version 5.00";
constexpr std::string_view CheckStart = "; checked: ";
constexpr std::string_view Utf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view Utf16Mark = "\xFF\xFE";

std::string_view Trim(std::string_view text)
{
    const size_t start = text.find_first_not_of(" \t");
    return start == std::string_view::npos ? std::string_view()
                                           : text.substr(start, text.find_last_not_of(" \t") - start + 1);
}

bool IsRemark(std::string_view line)
{
    const std::string_view text = Trim(line);
    return text.empty() || text[0] == ';';
}

// The path between the brackets; empty if the line is no heading of a key. "[-...]" deletes a
// key at an import; in a store it means nothing.
WideText KeyPathOf(std::string_view line)
{
    const std::string_view text = Trim(line);
    if (text.size() < 3 || text.front() != '[' || text.back() != ']' || text[1] == '-')
    {
        return {};
    }
    WideText path = PathFromBytes(text.substr(1, text.size() - 2));
    if (path.front() == u'\\' || path.back() == u'\\' || path.find(TEXT("\\\\")) != WideText::npos)
    {
        return {};
    }
    // Keys that regedit exports below this root are stored where the merged view writes.
    const WideView classes = TEXT("HKEY_CLASSES_ROOT");
    if (path.starts_with(classes) && (path.size() == classes.size() || path[classes.size()] == u'\\'))
    {
        path.replace(0, classes.size(), TEXT("HKEY_LOCAL_MACHINE\\Software\\Classes"));
    }
    return path;
}

class Parser
{
public:
    explicit Parser(RegistryTree &tree) : m_tree(tree) {}

    // False if the text breaks off in the middle of something.
    bool Parse(std::string_view text)
    {
        while (!text.empty())
        {
            const std::string line = TakeLine(text);
            if (StartKey(line))
            {
                continue;
            }
            if (IsRemark(line))
            {
                AddText(line);
            }
            else if (!ParseValue(line, text) && !m_lastLineClosed)
            {
                return false;
            }
        }
        return true;
    }

private:
    std::string TakeLine(std::string_view &text)
    {
        const size_t end = std::min(text.find('\n'), text.size());
        m_lastLineClosed = end < text.size();
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        // A careless conversion of line ends leaves several.
        while (line.ends_with('\r'))
        {
            line.remove_suffix(1);
        }
        return std::string(line);
    }

    bool StartKey(const std::string &line)
    {
        if (!Trim(line).starts_with('['))
        {
            return false;
        }
        const WideText path = KeyPathOf(line);
        m_unknownSection = path.empty();
        if (m_unknownSection)
        {
            return false;
        }
        m_key = &m_tree.Make(path);
        return true;
    }

    bool ParseValue(std::string line, std::string_view &text)
    {
        // Only values in bytes continue in the next line.
        while (line.ends_with('\\') && line.find("=hex") != std::string::npos && !text.empty())
        {
            line += '\n' + TakeLine(text);
        }
        auto value = m_key && !m_unknownSection ? ParseRegistryValue(line) : std::nullopt;
        if (!value)
        {
            AddText(line);
            return false;
        }
        if (RegistryLine *earlier = m_key->FindValue(value->name))
        {
            *earlier = std::move(*value);
        }
        else
        {
            m_key->lines.push_back(std::move(*value));
        }
        return true;
    }

    void AddText(const std::string &line)
    {
        if (m_key == nullptr)
        {
            m_tree.preamble.push_back(line);
            return;
        }
        RegistryLine kept;
        kept.text = line;
        m_key->lines.push_back(std::move(kept));
    }

    RegistryTree &m_tree;
    RegistryKey *m_key = nullptr;
    bool m_unknownSection = false;
    bool m_lastLineClosed = true;
};

// The remark that tells whether everything below it is as it was written. It stands at the top, where a file that
// was cut has lost either the keys or the right to it.
std::string CheckLine(std::string_view below)
{
    std::string bytes(below);
    std::erase(bytes, '\r'); // counted without the carriage returns of one form of the file
    char line[128];
    std::snprintf(line, sizeof(line), "%s%zu bytes follow, CRC-32 %08x. After a change by hand delete this line.",
                  CheckStart.data(), bytes.size(), static_cast<unsigned>(Crc32(bytes)));
    return line;
}

// Takes the check off the text; false if the text isn't what was checked. A file of an earlier version, or of
// regedit, has none.
bool TakeCheck(std::string_view &text)
{
    if (!text.starts_with(CheckStart))
    {
        return true;
    }
    const size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    line.remove_suffix(line.ends_with('\r') ? 1 : 0);
    text.remove_prefix(std::min(end + 1, text.size()));
    return line == CheckLine(text);
}

struct Section
{
    WideText path;
    const RegistryKey *key;
};

void CollectSections(const RegistryKey &key, const WideText &path, std::vector<Section> &sections)
{
    if (key.position != 0)
    {
        sections.push_back({path, &key});
    }
    for (const auto &[folded, child] : key.children)
    {
        CollectSections(*child, path.empty() ? child->name : path + u'\\' + child->name, sections);
    }
}

void AppendLine(std::string &text, std::string_view line)
{
    text.append(line);
    text += '\n';
}

std::string Encode(const std::string &text, const RegistryTree &tree)
{
    std::string lines;
    for (const char byte : text)
    {
        if (byte == '\n' && tree.hasCarriageReturns)
        {
            lines += '\r';
        }
        lines += byte;
    }
    if (!tree.isUtf16)
    {
        return lines;
    }
    const WideText wide = PathFromBytes(lines);
    std::string bytes(Utf16Mark);
    bytes.append(reinterpret_cast<const char *>(wide.data()), wide.size() * sizeof(WCHAR));
    return bytes;
}
} // namespace

std::optional<RegistryTree> ParseRegistryText(std::string_view bytes)
{
    RegistryTree tree;
    std::string text(bytes);
    if (bytes.starts_with(Utf16Mark))
    {
        if (bytes.size() % sizeof(WCHAR) != 0)
        {
            return std::nullopt;
        }
        WideText wide((bytes.size() - Utf16Mark.size()) / sizeof(WCHAR), 0);
        std::memcpy(wide.data(), bytes.data() + Utf16Mark.size(), wide.size() * sizeof(WCHAR));
        text = PathToBytes(wide);
        tree.isUtf16 = true;
    }
    else if (bytes.starts_with(Utf8Mark))
    {
        text.erase(0, Utf8Mark.size());
    }
    if (text.find('\0') != std::string::npos)
    {
        return std::nullopt;
    }
    const size_t start = std::min(text.find_first_not_of(" \t\r\n"), text.size());
    std::string_view rest = std::string_view(text).substr(start);
    const size_t end = std::min(rest.find('\n'), rest.size());
    std::string_view first = rest.substr(0, end);
    tree.hasCarriageReturns = first.ends_with('\r');
    first.remove_suffix(tree.hasCarriageReturns ? 1 : 0);
    if (Trim(first) != Heading)
    {
        return std::nullopt;
    }
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (!TakeCheck(rest) || !Parser(tree).Parse(rest) || tree.lastPosition == 0)
    {
        return std::nullopt;
    }
    return tree;
}

std::string FormatRegistryText(const RegistryTree &tree)
{
    std::vector<Section> sections;
    CollectSections(tree.root, {}, sections);
    std::sort(sections.begin(), sections.end(),
              [](const Section &left, const Section &right) { return left.key->position < right.key->position; });
    std::string text;
    for (const std::string &line : tree.preamble)
    {
        AppendLine(text, line);
    }
    for (const Section &section : sections)
    {
        if (text != "\n" && !text.ends_with("\n\n"))
        {
            text += '\n';
        }
        AppendLine(text, '[' + PathToBytes(section.path) + ']');
        for (const RegistryLine &line : section.key->lines)
        {
            AppendLine(text, line.isValue ? FormatRegistryValue(line) : line.text);
        }
    }
    std::string file;
    AppendLine(file, Heading);
    AppendLine(file, CheckLine(text));
    return Encode(file + text, tree);
}
