#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/memory/list.h"
#include "dorvutil/text/string.h"

namespace dorvutil {

/// A folder path and a file name. Both separators, `\` and `/`, are understood everywhere; a folder path that is not
/// empty ends with one (`\` is added where it is missing). Comparison is case-sensitive. A value, not synchronised.
class DORVUTIL_API OrvFileName {
public:
    OrvFileName() = default;
    /// Splits at the last separator, after turning every `/` into `\`. Of a text that ends with a separator the last
    /// folder becomes the file name, unless it is the only one: then there is no file name.
    explicit OrvFileName(const ORVustring& fullPath);
    OrvFileName(const ORVustring& path, const ORVustring& fileName);
    /// The path is every folder in order, each with `\` behind it. Null elements are passed over.
    OrvFileName(const ListMgr<ORVustring>& folders, ORVustring fileName);
    OrvFileName(const OrvFileName& other);
    OrvFileName& operator=(const OrvFileName& other);
    bool operator==(const OrvFileName& other) const;

    void ToLower();
    void NormalizeSlashes();  ///< `/` becomes `\`.
    ORVustring GetFullPath(bool withFileName) const;
    /// The last folder of the path, without separators.
    ORVustring GetFolderName() const;
    /// Without the extension: the part before the last '.', or all of a name that has none.
    ORVustring GetFileName(bool withExtension) const;
    ORVustring GetExtension() const;  ///< Without the dot; empty when there is none.
    /// The non-empty folders of the path in order, and the file name when asked for. Replaces what `out` holds.
    void GetPath(ListMgr<ORVustring>& out, bool withFileName) const;
    /// The path is cut at its last separator and, with `skipTrailing` when that took off nothing but the trailing
    /// separator, once more; the result is the text behind the last separator left. So C:\maps\eu\ gives "eu", and
    /// "maps" with the flag. A cut that finds no separator leaves nothing.
    ORVustring GetParentDirectory(bool skipTrailing) const;
    /// The same as the only folder of `out`, without file name; false, with `out` unchanged, when it is empty.
    bool GetParentDirectory(OrvFileName& out, bool skipTrailing) const;
    /// All folders but the last, each with `\` behind it; empty when there are fewer than two.
    ORVustring GetParentDirectoryPath() const;
    bool IsDirectory() const { return m_fileName.empty(); }
    /// The file exists or, without a file name, the folder.
    bool Exists() const;
    void Clear();
    void ClearFileName();
    void SetPath(const ORVustring& path);
    void SetFileName(const ORVustring& fileName);
    /// Replaces the extension, or adds one; a dot is put in front where it is missing. Empty removes it.
    void SetExtension(const ORVustring& extension);
    void AppendFolder(const ORVustring& folder);  ///< Also clears the file name.
    std::uint32_t HashValue() const;

private:
    void CompletePath();

    ORVustring m_path;
    ORVustring m_fileName;
};

/// Orders by the names without extension, byte by byte (the empty name first); equal names by their full paths,
/// descending.
DORVUTIL_API int CompareOrvFileNamesByRoot(const OrvFileName* const* a, const OrvFileName* const* b);

}  // namespace dorvutil
