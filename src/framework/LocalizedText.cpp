#include "framework/LocalizedText.h"

#include "framework/CStringLocalizer.h"
#include "framework/IString.h"

namespace kore {

P<IString> getLocalizedText(const CStringArg& key, const CStringArg& englishDefault)
{
    return CStringLocalizer::instance()->getString(key, englishDefault);
}

} // namespace kore
