#include "framework/errors/CException.h"

#include "framework/errors/LocalizedText.h"
#include "framework/text/CString.h"

namespace kore {

P<IString> keepText(const CStringArg& text)
{
    return make<CString>(text.get(), *text->getEncoding());
}

P<IString> localizedWith(const CStringArg& key, const CStringArg& englishDefault, const CStringArg& placeholder,
                         const CStringArg& value)
{
    return getLocalizedText(key, englishDefault)->replaceAll(placeholder, value);
}

CException::CException(const CStringArg& generalDescription, const CStringArg& description)
    : m_generalDescription(keepText(generalDescription)), m_description(keepText(description))
{
}

CException::CException(const CException& other)
    : std::exception(other), CObject(other), m_generalDescription(other.m_generalDescription),
      m_description(other.m_description)
{
}

CException::~CException() = default;

const char* CException::what() const noexcept
{
    try {
        if (!m_description)
            return "";
        if (!m_what) {
            if (m_description->getEncoding()->getId() == CCPCharEncoding::kId && m_description->isTerminated())
                m_what = m_description;
            else
                m_what = m_description->convertTo(*CCPCharEncoding::instance());
        }
        return reinterpret_cast<const char*>(m_what->getBuffer());
    } catch (...) {
        return "";
    }
}

P<IString> CException::getGeneralDescription() const
{
    return m_generalDescription ? m_generalDescription : CString::empty();
}

P<IString> CException::getDescription() const
{
    return m_description ? m_description : CString::empty();
}

P<CException> CException::clone() const
{
    return make<CException>(*this);
}

} // namespace kore
