#pragma once
// What most framework tests need: GoogleTest, the framework's strings, pointers and casts, the
// standard headers of the thread and table tests, and checks on the error a call must throw (a
// call that throws nothing fails the test).

#include "framework/errors/CInvalidArgError.h"
#include "framework/objects/CObject.h"
#include "framework/objects/Cast.h"
#include "framework/text/CString.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace kore_test {

using namespace kore;

// An object that records its id when it dies.
struct CMortal : CObject {
    static inline std::vector<int> dead;
    explicit CMortal(int id) : id(id) {}
    ~CMortal() override { dead.push_back(id); }
    const int id;
};

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

// Runs `call`, which must throw an E about `uri` (null: none) whose description holds the URI's
// text, or `filledIn` where there is no URI: the placeholder filled in. The error texts as a
// whole are ErrorsTest's.
template <class E, class F, class URI>
void expectNaming(F&& call, const URI* uri, const std::string& filledIn = {})
{
    expectThrown<E>(call, [&](const E& e) {
        const std::string text = e.getDescription()->toUTF8();
        EXPECT_NE(text.find(uri ? uri->toString()->toUTF8() : filledIn), std::string::npos) << text;
        EXPECT_EQ(static_cast<const IBase*>(e.getURI().get()), static_cast<const IBase*>(uri));
    });
}

} // namespace kore_test
