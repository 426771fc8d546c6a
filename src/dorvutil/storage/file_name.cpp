#include "dorvutil/storage/file_name.h"

#include <cstring>
#include <limits>
#include <utility>

#include "dorvutil/storage/file_system.h"
#include "dorvutil/storage/path_parts.h"
#include "dorvutil/text/string_hash.h"

namespace dorvutil {
namespace {

void Normalize(ORVustring& text) { text.replaceallchar("/", "\\", std::numeric_limits<std::int32_t>::max()); }

std::int32_t Length(const ORVustring& text) { return static_cast<std::int32_t>(text.length()); }

std::int32_t LastSeparator(const ORVustring& text) { return text.find_last_of(kSeparators); }

// Takes off the last separator and what follows it.
void CutAtLastSeparator(ORVustring& text) {
    const std::int32_t separator = LastSeparator(text);
    text = separator > 0 ? text.substr(0, separator) : ORVustring();
}

ORVustring BehindLastSeparator(const ORVustring& text) { return text.substr(LastSeparator(text) + 1); }

// Position of the dot before the extension, or the length of a name that has none.
std::int32_t ExtensionDot(const ORVustring& name) {
    const std::int32_t dot = name.find_last_of(".");
    return dot >= 0 ? dot : Length(name);
}

}  // namespace

OrvFileName::OrvFileName(const ORVustring& fullPath) {
    ORVustring text(fullPath);
    Normalize(text);
    std::int32_t separator = LastSeparator(text);
    if (separator > 0 && separator == Length(text) - 1) {
        CutAtLastSeparator(text);
        separator = LastSeparator(text);
        if (separator < 0) {
            SetPath(text);
            return;
        }
    }
    // With its separator, so that the root stays the root.
    if (separator >= 0) SetPath(text.substr(0, separator + 1));
    SetFileName(text.substr(separator + 1));
}

OrvFileName::OrvFileName(const ORVustring& path, const ORVustring& fileName) : m_path(path), m_fileName(fileName) {
    CompletePath();
}

OrvFileName::OrvFileName(const ListMgr<ORVustring>& folders, ORVustring fileName) : m_fileName(std::move(fileName)) {
    for (std::uint32_t i = 0; i < folders.Count(); ++i) {
        if (!folders[i]) continue;
        m_path += *folders[i];
        m_path += '\\';
    }
}

OrvFileName::OrvFileName(const OrvFileName& other) {
    SetPath(other.m_path);
    SetFileName(other.m_fileName);
}

OrvFileName& OrvFileName::operator=(const OrvFileName& other) {
    SetPath(other.m_path);
    SetFileName(other.m_fileName);
    return *this;
}

bool OrvFileName::operator==(const OrvFileName& other) const {
    return m_fileName == other.m_fileName && m_path == other.m_path;
}

void OrvFileName::ToLower() {
    m_path.to_lower();
    m_fileName.to_lower();
}

void OrvFileName::NormalizeSlashes() {
    Normalize(m_path);
    Normalize(m_fileName);
}

ORVustring OrvFileName::GetFullPath(bool withFileName) const {
    ORVustring path(m_path);
    if (withFileName) path += m_fileName;
    return path;
}

ORVustring OrvFileName::GetFolderName() const {
    ORVustring path(m_path);
    CutAtLastSeparator(path);
    return BehindLastSeparator(path);
}

ORVustring OrvFileName::GetFileName(bool withExtension) const {
    return withExtension ? m_fileName : m_fileName.substr(0, ExtensionDot(m_fileName));
}

ORVustring OrvFileName::GetExtension() const { return m_fileName.substr(ExtensionDot(m_fileName) + 1); }

void OrvFileName::GetPath(ListMgr<ORVustring>& out, bool withFileName) const {
    out.Flush();
    const char* const text = m_path.c_str();
    for (const char* at = text; *at != '\0';) {
        const std::size_t length = std::strcspn(at, kSeparators);
        if (length != 0) AddText(out, ORVustring(at, static_cast<std::int32_t>(length)));
        at += length;
        if (*at != '\0') ++at;
    }
    if (withFileName) AddText(out, m_fileName);
}

ORVustring OrvFileName::GetParentDirectory(bool skipTrailing) const {
    ORVustring path(m_path);
    const bool onlyTrailing = LastSeparator(path) == Length(path) - 1;
    CutAtLastSeparator(path);
    if (skipTrailing && onlyTrailing) CutAtLastSeparator(path);
    return BehindLastSeparator(path);
}

bool OrvFileName::GetParentDirectory(OrvFileName& out, bool skipTrailing) const {
    const ORVustring parent = GetParentDirectory(skipTrailing);
    if (parent.empty()) return false;
    out = OrvFileName(parent, ORVustring());
    return true;
}

ORVustring OrvFileName::GetParentDirectoryPath() const {
    ListMgr<ORVustring> folders;
    GetPath(folders, false);
    ORVustring path;
    for (std::uint32_t i = 0; i + 1 < folders.Count(); ++i) {
        path += *folders[i];
        path += '\\';
    }
    return path;
}

bool OrvFileName::Exists() const {
    return m_fileName.empty() ? FileDoesDirExist(m_path) : FileExists(GetFullPath(true));
}

void OrvFileName::Clear() {
    m_path = ORVustring();
    ClearFileName();
}

void OrvFileName::ClearFileName() { m_fileName = ORVustring(); }

void OrvFileName::SetPath(const ORVustring& path) {
    m_path = path;
    CompletePath();
}

void OrvFileName::SetFileName(const ORVustring& fileName) { m_fileName = fileName; }

void OrvFileName::SetExtension(const ORVustring& extension) {
    ORVustring name = GetFileName(false);
    if (!extension.empty() && extension[0] != '.') name += '.';
    name += extension;
    m_fileName = name;
}

void OrvFileName::AppendFolder(const ORVustring& folder) {
    ClearFileName();
    m_path += folder;
    CompletePath();
}

std::uint32_t OrvFileName::HashValue() const {
    return StrHashValue(m_fileName.c_str(), m_fileName.length()) ^ StrHashValue(m_path.c_str(), m_path.length());
}

void OrvFileName::CompletePath() {
    if (!m_path.empty()) m_path.appendSlash();
}

int CompareOrvFileNamesByRoot(const OrvFileName* const* a, const OrvFileName* const* b) {
    const std::int32_t byRoot = (*a)->GetFileName(false).compare((*b)->GetFileName(false));
    return byRoot != 0 ? byRoot : (*b)->GetFullPath(true).compare((*a)->GetFullPath(true));
}

}  // namespace dorvutil
