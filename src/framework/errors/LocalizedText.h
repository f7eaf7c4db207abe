#pragma once
// The one place where framework code asks for a localised text: the string localizer's text for
// `key`, or `englishDefault` when the current language has none. Placeholders in the result are
// left for the caller to fill.

#include "framework/objects/P.h"
#include "framework/text/CStringArg.h"

namespace kore {

class IString;

P<IString> getLocalizedText(const CStringArg& key, const CStringArg& englishDefault);

} // namespace kore
