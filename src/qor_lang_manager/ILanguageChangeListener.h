#pragma once

#include "framework/objects/IBase.h"
#include "qor_lang_manager/LanguageId.h"

namespace qor_lang {

// Told by the language manager after the current language changed.
class ILanguageChangeListener : public virtual kore::IBase {
public:
    virtual void onLanguageChanged(const LanguageId& language) = 0;
};

} // namespace qor_lang
