#include "qmxml/core/exception.h"

#include <cstdarg>
#include <cstdio>
#include <vector>

namespace QmXmlLib10 {

std::string FormatString(const char* format, ...) {
    char small[256];
    va_list args;
    va_start(args, format);
    va_list again;
    va_copy(again, args);
    const int needed = std::vsnprintf(small, sizeof small, format, args);
    va_end(args);
    std::string result;
    if (needed < 0) {
        va_end(again);
        return result;
    }
    if (static_cast<size_t>(needed) < sizeof small) {
        result.assign(small, static_cast<size_t>(needed));
    } else {
        result.resize(static_cast<size_t>(needed) + 1);
        std::vsnprintf(&result[0], result.size(), format, again);
        result.resize(static_cast<size_t>(needed));
    }
    va_end(again);
    return result;
}

CQmException::CQmException() = default;

CQmException::CQmException(std::string message) : m_message(std::move(message)) {}

CQmException::CQmException(std::string message, const CQmException& cause)
    : m_message(std::move(message)), m_inner(cause.Clone()) {}

CQmException::CQmException(const CQmException& other)
    : std::exception(other), m_message(other.m_message),
      m_inner(other.m_inner ? other.m_inner->Clone() : nullptr) {}

CQmException& CQmException::operator=(const CQmException& other) {
    // Clone before freeing, so that assigning an exception its own cause is safe.
    std::unique_ptr<CQmException> inner(other.m_inner ? other.m_inner->Clone() : nullptr);
    m_message = other.m_message;
    m_inner = std::move(inner);
    return *this;
}

CQmException::~CQmException() {
    // Unwind the chain iteratively so that a very long chain cannot exhaust the stack.
    std::unique_ptr<CQmException> next = std::move(m_inner);
    while (next) {
        std::unique_ptr<CQmException> after = std::move(next->m_inner);
        next = std::move(after);
    }
}

std::string CQmException::GetFullMessage() const {
    std::string text = m_message;
    for (const CQmException* e = m_inner.get(); e != nullptr; e = e->m_inner.get()) {
        text += "\n\n";
        text += e->m_message;
    }
    return text;
}

CQmException* CQmException::Clone() const { return new CQmException(*this); }

#define QMXML_DEFINE_EXCEPTION(Name)                                  \
    Name::~Name() = default;                                          \
    CQmException* Name::Clone() const { return new Name(*this); }

QMXML_DEFINE_EXCEPTION(CQmValidationException)
QMXML_DEFINE_EXCEPTION(CQmInvalidValueException)
QMXML_DEFINE_EXCEPTION(CQmInvalidNamespaceException)
QMXML_DEFINE_EXCEPTION(CQmInvalidStateException)
QMXML_DEFINE_EXCEPTION(CQmInvalidParamException)
QMXML_DEFINE_EXCEPTION(CQmOverFlowException)

}  // namespace QmXmlLib10
