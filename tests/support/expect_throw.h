// Assertions on what the library throws: the exception class and the exact message.
#pragma once

#include <gtest/gtest.h>

#include <qmxml/core/exception.h>

#include <string>
#include <typeinfo>

namespace qmxml_test {

// fn must throw exactly the class E, not a subclass, carrying `message`.
template <class E, class Fn>
void ExpectThrow(Fn&& fn, const std::string& message) {
    try {
        fn();
        ADD_FAILURE() << "no exception, expected: " << message;
    } catch (const QmXmlLib10::CQmException& e) {
        EXPECT_EQ(typeid(E), typeid(e)) << e.GetMessage();
        EXPECT_EQ(message, e.GetMessage());
    }
}

// The common case of the value parsers.
template <class Fn>
void ExpectInvalid(Fn&& fn, const std::string& message) {
    ExpectThrow<QmXmlLib10::CQmInvalidValueException>(fn, message);
}

// fn must throw E or a subclass of it carrying `message`; anything else escapes.
template <class E, class Fn>
void ExpectMessage(Fn&& fn, const std::string& message) {
    try {
        fn();
        ADD_FAILURE() << "no exception, expected: " << message;
    } catch (const E& e) {
        EXPECT_EQ(message, e.GetMessage());
    }
}

// The message of the E that fn throws, or "<no exception>".
template <class E = QmXmlLib10::CQmException, class Fn>
std::string MessageOf(Fn&& fn) {
    try {
        fn();
    } catch (const E& e) {
        return e.GetMessage();
    }
    return "<no exception>";
}

// The full message, inner exceptions included, of what fn throws, or "<no exception>".
template <class Fn>
std::string FailureOf(Fn&& fn) {
    try {
        fn();
    } catch (const QmXmlLib10::CQmException& e) {
        return e.GetFullMessage();
    }
    return "<no exception>";
}

}  // namespace qmxml_test
