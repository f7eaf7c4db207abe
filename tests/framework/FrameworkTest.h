#pragma once
// What most framework tests need: GoogleTest, the framework's strings, pointers and casts, and
// checks on the error a call must throw (a call that throws nothing fails the test).

#include "framework/errors/CInvalidArgError.h"
#include "framework/objects/Cast.h"
#include "framework/text/CString.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kore_test {

using namespace kore;

// Runs `call`, which must throw an E, and hands the error to `check`.
template <class E, class F, class Check>
void expectThrown(F&& call, Check&& check)
{
    try {
        call();
        ADD_FAILURE() << "no error";
    } catch (const E& e) {
        check(e);
    }
}

// The description of the E that `call` throws, "<no error>" when it throws none.
template <class E, class F>
std::string descriptionOf(F&& call)
{
    std::string description = "<no error>";
    expectThrown<E>(call, [&](const E& e) { description = e.getDescription()->toUTF8(); });
    return description;
}

// Runs `call`, which must throw an E (an error that carries a URI) about `uri` whose description
// holds `filledIn`, the text of its placeholder. Error texts as a whole are ErrorsTest's.
template <class E, class F>
void expectNaming(F&& call, const std::string& filledIn, const IBase* uri)
{
    expectThrown<E>(call, [&](const E& e) {
        EXPECT_NE(e.getDescription()->toUTF8().find(filledIn), std::string::npos) << e.getDescription()->toUTF8();
        EXPECT_EQ(static_cast<const IBase*>(e.getURI().get()), uri);
    });
}

} // namespace kore_test
