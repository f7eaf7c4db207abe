// The URI, file and stream errors.
#include "framework/errors/CURIError.h"

#include "framework/errors/CEndOfStreamError.h"
#include "framework/errors/CFileAccessDeniedError.h"
#include "framework/errors/CFileNotFoundError.h"
#include "framework/errors/CStreamClosedError.h"
#include "framework/errors/CURIFormatError.h"
#include "framework/errors/CURITypeNotSupportedError.h"
#include "framework/errors/LocalizedText.h"
#include "framework/text/CString.h"

namespace kore {

P<IString> CURIError::uriText(const IURI* uri)
{
    return uri ? uri->toString() : keepText("<uri unknown>");
}

CURIError::CURIError(const IURI* uri, const CStringArg& generalDescription, const CStringArg& description)
    : CError(generalDescription, description), m_uri(const_cast<IURI*>(uri))
{
}

P<IURI> CURIError::getURI() const
{
    return m_uri;
}

P<CException> CURIError::clone() const
{
    return make<CURIError>(*this);
}

CURIFormatError::CURIFormatError(const IURI* uri) : CURIFormatError(uri, *uriText(uri))
{
}

CURIFormatError::CURIFormatError(const CStringArg& text) : CURIFormatError(nullptr, text)
{
}

CURIFormatError::CURIFormatError(const IURI* uri, const CStringArg& text)
    : CURIError(uri, getLocalizedText("kore.CURIFormatError.GeneralDesc", "The URI has an invalid format."),
                localizedWith("kore.CURIFormatError.Desc", "The URI ('%URI%') has an invalid format.", "%URI%", text))
{
}

P<CException> CURIFormatError::clone() const
{
    return make<CURIFormatError>(*this);
}

CURITypeNotSupportedError::CURITypeNotSupportedError(const IURI* uri) : CURITypeNotSupportedError(uri, *uriText(uri))
{
}

CURITypeNotSupportedError::CURITypeNotSupportedError(const CStringArg& text) : CURITypeNotSupportedError(nullptr, text)
{
}

CURITypeNotSupportedError::CURITypeNotSupportedError(const IURI* uri, const CStringArg& text)
    : CURIError(uri,
                // "This type URI" lacks a word; the text is kept as the framework has always had it.
                getLocalizedText("kore.CURITypeNotSupportedError.GeneralDesc", "This type URI is not supported."),
                localizedWith("kore.CURITypeNotSupportedError.Desc", "This type of URI ('%URI%') is not supported.",
                              "%URI%", text))
{
}

P<CException> CURITypeNotSupportedError::clone() const
{
    return make<CURITypeNotSupportedError>(*this);
}

// --- File errors

CFileError::CFileError(const IURI* uri, const CStringArg& description) : CURIError(uri, "FileError", description)
{
}

CFileError::CFileError(const IURI* uri, const CStringArg& generalDescription, const CStringArg& description)
    : CURIError(uri, generalDescription, description)
{
}

P<CException> CFileError::clone() const
{
    return make<CFileError>(*this);
}

CFileNotFoundError::CFileNotFoundError(const IURI* uri)
    : CFileError(
          uri, getLocalizedText("kore.CFileNotFoundError.GeneralDesc", "The file was not found."),
          localizedWith("kore.CFileNotFoundError.Desc", "The file '%FILE%' was not found.", "%FILE%", uriText(uri)))
{
}

P<CException> CFileNotFoundError::clone() const
{
    return make<CFileNotFoundError>(*this);
}

CFileAccessDeniedError::CFileAccessDeniedError(const IURI* uri)
    : CFileError(uri, "FileError",
                 localizedWith("kore.CFileAccessDeniedError.Desc", "The access of the file '%FILE%' was denied.",
                               "%FILE%", uriText(uri)))
{
}

P<CException> CFileAccessDeniedError::clone() const
{
    return make<CFileAccessDeniedError>(*this);
}

// --- Stream errors

CStreamError::CStreamError(const IURI* uri, const CStringArg& generalDescription, const CStringArg& description)
    : CURIError(uri, generalDescription, description)
{
}

P<CException> CStreamError::clone() const
{
    return make<CStreamError>(*this);
}

CEndOfStreamError::CEndOfStreamError(const IURI* uri, const CStringArg& generalDescription)
    : CStreamError(uri, generalDescription,
                   uri ? *keepText("Unexpected end of data stream (uri: '")->concat(uri->toString())->concat("')")
                       : *keepText("Unexpected end of data stream."))
{
}

P<CException> CEndOfStreamError::clone() const
{
    return make<CEndOfStreamError>(*this);
}

CStreamClosedError::CStreamClosedError(const IURI* uri, const CStringArg& generalDescription)
    : CStreamError(uri, generalDescription, "The stream has been closed.")
{
}

P<CException> CStreamClosedError::clone() const
{
    return make<CStreamClosedError>(*this);
}

} // namespace kore
