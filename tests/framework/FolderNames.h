#pragma once
// What an enumeration of a folder finds.

#include "framework/io/IFileEntry.h"
#include "framework/io/IFileEnum.h"
#include "framework/io/IFileSystemManager.h"
#include "framework/io/IURI.h"
#include "framework/text/IString.h"

#include <string>
#include <vector>

namespace kore_test {

// The names of the entries of `folder` that match `pattern`, in the enumeration's order; a
// folder's name ends in "/".
inline std::vector<std::string> names(const kore::P<kore::IURI>& folder, const kore::CStringArg& pattern)
{
    std::vector<std::string> out;
    for (auto found = kore::IFileSystemManager::instance()->enumerate(*folder, pattern); found->hasNext();) {
        const kore::P<kore::IFileEntry> entry = found->next();
        out.push_back(entry->getName()->toUTF8() + (entry->isFolder() ? "/" : ""));
    }
    return out;
}

} // namespace kore_test
