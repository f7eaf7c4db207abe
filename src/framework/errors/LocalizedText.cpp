#include "framework/errors/LocalizedText.h"

#include "framework/text/CStringLocalizer.h"
#include "framework/text/IString.h"

namespace kore {

P<IString> getLocalizedText(const CStringArg& key, const CStringArg& englishDefault)
{
    return CStringLocalizer::instance()->getString(key, englishDefault);
}

} // namespace kore
