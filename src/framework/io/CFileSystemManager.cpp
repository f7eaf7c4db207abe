#include "framework/io/CFileSystemManager.h"

#include "framework/errors/CEndOfEnumError.h"
#include "framework/errors/CInvalidArgError.h"
#include "framework/errors/CURITypeNotSupportedError.h"
#include "framework/io/FileSystemSupport.h"
#include "framework/io/IFileEntry.h"
#include "framework/io/IFileEnum.h"
#include "framework/io/IURI.h"
#include "framework/log/CLogManager.h"
#include "framework/objects/CGlobalObjFactory.h"
#include "framework/text/CCaseTable.h"
#include "framework/text/CCharCursor.h"
#include "framework/text/CString.h"
#include "framework/text/CStringFormat.h"

#include <algorithm>
#include <string>
#include <vector>

namespace kore {

namespace {

constexpr int32_t kWarningLevel = 2;
constexpr const char* kLogModule = "kore::CFileSystemManager";

P<IFileSystemManager> create()
{
    return make<CFileSystemManager>();
}

std::u32string codePoints(const IString& s)
{
    std::u32string out;
    out.reserve(s.getLength());
    CCharCursor cursor(s);
    for (uint32_t cp = 0; cursor.next(cp);)
        out.push_back(static_cast<char32_t>(cp));
    return out;
}

// The character as the enumeration order sees it: case-folded, ASCII letters in upper case
// (NTFS compares upper-cased names, so "_" sorts after the letters).
uint32_t orderKey(uint32_t cp)
{
    const uint32_t folded = CCaseTable::map(cp);
    return (folded >= 'a' && folded <= 'z') ? folded - ('a' - 'A') : folded;
}

bool sameChar(char32_t a, char32_t b, bool ignoreCase)
{
    return a == b || (ignoreCase && CCaseTable::map(a) == CCaseTable::map(b));
}

// Wildcard match without recursion: on a mismatch, go back to the last "*" and let it take one
// more character. Linear in practice, quadratic at worst.
bool matchCodePoints(const std::u32string& name, const std::u32string& pattern, bool ignoreCase)
{
    size_t n = 0;
    size_t p = 0;
    size_t starPattern = std::u32string::npos;
    size_t starName = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == U'*') {
            starPattern = p++;
            starName = n;
        } else if (p < pattern.size() && (pattern[p] == U'?' || sameChar(pattern[p], name[n], ignoreCase))) {
            ++p;
            ++n;
        } else if (starPattern != std::u32string::npos) {
            p = starPattern + 1;
            n = ++starName;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == U'*')
        ++p;
    return p == pattern.size();
}

int32_t compareCodePoints(const std::u32string& a, const std::u32string& b)
{
    const size_t common = std::min(a.size(), b.size());
    for (size_t i = 0; i < common; ++i) {
        const uint32_t ka = orderKey(a[i]);
        const uint32_t kb = orderKey(b[i]);
        if (ka != kb)
            return ka < kb ? -1 : 1;
    }
    if (a.size() != b.size())
        return a.size() < b.size() ? -1 : 1;
    // Equal but for case (possible where case counts): a fixed order all the same.
    return a == b ? 0 : (a < b ? -1 : 1);
}

class CFileEntry : public CObject, public IFileEntry {
public:
    CFileEntry(P<IURI> uri, P<IString> name, bool folder)
        : m_uri(std::move(uri)), m_name(std::move(name)), m_folder(folder)
    {
    }
    P<IURI> getURI() const override { return m_uri; }
    P<IString> getName() const override { return m_name; }
    bool isFolder() const override { return m_folder; }

private:
    P<IURI> m_uri;
    P<IString> m_name;
    bool m_folder;
};

class CFileEnum : public CObject, public IFileEnum {
public:
    explicit CFileEnum(std::vector<P<IFileEntry>> entries) : m_entries(std::move(entries)) {}
    bool hasNext() const override { return m_next < m_entries.size(); }
    P<IFileEntry> next() override
    {
        if (m_next >= m_entries.size())
            throw CEndOfEnumError(this);
        return m_entries[m_next++];
    }
    void reset() override { m_next = 0; }
    uint32_t getCount() const override { return static_cast<uint32_t>(m_entries.size()); }

private:
    std::vector<P<IFileEntry>> m_entries;
    size_t m_next = 0;
};

} // namespace

P<IFileSystemManager>& IFileSystemManager::instance()
{
    return CGlobalObjFactory::accessor<IFileSystemManager, &create>();
}

bool CFileSystemManager::matches(const IString& name, const IString& pattern, bool ignoreCase)
{
    return matchCodePoints(codePoints(name), codePoints(pattern), ignoreCase);
}

int32_t CFileSystemManager::compareNames(const IString& a, const IString& b)
{
    return compareCodePoints(codePoints(a), codePoints(b));
}

P<IFileEnum> CFileSystemManager::enumerate(const IURI& folder, const CStringArg& pattern)
{
    if (pattern->getLength() == 0 || pattern->find('/') != IString::kNotFound ||
        pattern->find('\\') != IString::kNotFound)
        throw CInvalidArgError(this, "CFileSystemManager::enumerate", "pattern");
    if (!folder.isFile())
        throw CURITypeNotSupportedError(&folder);
    const P<IString> path = folder.getLocalPath();

    std::vector<platform::NativeFolderEntry> listed;
    platform::NativeError error;
    if (!platform::listNativeFolder(*path, listed, error))
        platform::throwFileError(&folder, error, "kore.CFileSystemManager.ListFailed",
                                 "The folder '%FILE%' could not be read: %DESC%");

    struct Match {
        P<IString> name;
        std::u32string key;
        bool folder;
    };
    const bool ignoreCase = platform::fileNamesIgnoreCase();
    const std::u32string patternPoints = codePoints(pattern.get());
    std::vector<Match> matched;
    for (const platform::NativeFolderEntry& entry : listed) {
        // A name that is not UTF-8 has no faithful text form, and a URI made from a mangled
        // name would open a different file (or none): it is left out, and said so.
        P<IString> name = CString::tryFromUTF8(entry.name);
        if (!name) {
            CLogManager::instance()->log(kWarningLevel, kLogModule,
                                         *formatString("skipped an entry of '%s': its name is not UTF-8", *path), 0,
                                         -1);
            continue;
        }
        std::u32string points = codePoints(*name);
        if (matchCodePoints(points, patternPoints, ignoreCase))
            matched.push_back({std::move(name), std::move(points), entry.isFolder});
    }
    std::sort(matched.begin(), matched.end(),
              [](const Match& a, const Match& b) { return compareCodePoints(a.key, b.key) < 0; });

    std::vector<P<IFileEntry>> entries;
    entries.reserve(matched.size());
    for (const Match& m : matched)
        entries.push_back(make<CFileEntry>(folder.resolve(m.name, m.folder), m.name, m.folder));
    return make<CFileEnum>(std::move(entries));
}

} // namespace kore
