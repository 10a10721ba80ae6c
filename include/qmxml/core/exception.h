// The library's one failure channel: CQmException and its subclasses.
#pragma once

#include <exception>
#include <memory>
#include <string>

namespace QmXmlLib10 {

// printf-style formatting into an 8-bit string; every message with placeholders
// is built with it.
std::string FormatString(const char* format, ...) __attribute__((format(printf, 1, 2)));

// An exception carries its own message and, optionally, a private deep copy of
// the exception that caused it, so that a failure deep in a tree can be
// rethrown with context at each level and the caller can print the whole chain.
class CQmException : public std::exception {
public:
    CQmException();
    explicit CQmException(std::string message);
    CQmException(std::string message, const CQmException& cause);
    CQmException(const CQmException& other);
    CQmException& operator=(const CQmException& other);
    ~CQmException() override;

    // This exception's own message only.
    std::string GetMessage() const { return m_message; }
    // The own message, then "\n\n" and the inner exception's full message, recursively.
    std::string GetFullMessage() const;
    // The cause, or null.
    const CQmException* GetInnerException() const { return m_inner.get(); }

    const char* what() const noexcept override { return m_message.c_str(); }

protected:
    // A heap copy with the exact dynamic class, inner chain included.
    virtual CQmException* Clone() const;

private:
    std::string m_message;
    std::unique_ptr<CQmException> m_inner;
};

#define QMXML_DECLARE_EXCEPTION(Name)                                        \
    class Name : public CQmException {                                       \
    public:                                                                  \
        Name() = default;                                                    \
        explicit Name(std::string message) : CQmException(std::move(message)) {} \
        Name(std::string message, const CQmException& cause)                 \
            : CQmException(std::move(message), cause) {}                     \
        Name(const Name& other) = default;                                   \
        Name& operator=(const Name& other) = default;                        \
        ~Name() override;                                                    \
                                                                             \
    protected:                                                               \
        CQmException* Clone() const override;                                \
    };

// The document does not match the schema metadata.
QMXML_DECLARE_EXCEPTION(CQmValidationException)
// A lexical value that cannot be converted, or a value outside its range.
QMXML_DECLARE_EXCEPTION(CQmInvalidValueException)
// An element or attribute whose namespace does not fit the metadata.
QMXML_DECLARE_EXCEPTION(CQmInvalidNamespaceException)
// An operation that the current state forbids.
QMXML_DECLARE_EXCEPTION(CQmInvalidStateException)
// A bad argument to a public operation.
QMXML_DECLARE_EXCEPTION(CQmInvalidParamException)
// Arithmetic overflow in the numeric types.
QMXML_DECLARE_EXCEPTION(CQmOverFlowException)

#undef QMXML_DECLARE_EXCEPTION

}  // namespace QmXmlLib10
