// Owners of interface pointers, BSTRs and VARIANTs.
#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

#include "automation/Owners.h"

using namespace kemba;

namespace {

/// Counts its references; lives on the test's stack.
struct Counted : IDispatch {
    ULONG references = 1;
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        return E_NOTIMPL;
    }
};

static_assert(!std::is_copy_constructible_v<ComPtr<IDispatch>> &&
              !std::is_copy_assignable_v<ComPtr<IDispatch>>);
static_assert(!std::is_copy_constructible_v<OwnedBstr> && !std::is_copy_assignable_v<OwnedBstr>);
static_assert(!std::is_copy_constructible_v<OwnedVariant> && !std::is_copy_assignable_v<OwnedVariant>);

TEST(ComPtr, TakesAReferenceOverAndReleasesItOnce) {
    Counted object;
    {
        const ComPtr<IDispatch> pointer(&object);
    }
    EXPECT_EQ(object.references, 0U);
}

TEST(ComPtr, SharingAddsAReferenceOfItsOwn) {
    Counted object;
    {
        const auto pointer = ComPtr<IDispatch>::Share(&object);
        EXPECT_EQ(object.references, 2U);
        EXPECT_EQ(pointer.Get(), &object);
    }
    EXPECT_EQ(object.references, 1U);
    EXPECT_FALSE(ComPtr<IDispatch>::Share(nullptr));
}

TEST(ComPtr, MovingHandsTheReferenceOn) {
    Counted first;
    Counted second;
    {
        ComPtr<IDispatch> from(&first);
        ComPtr<IDispatch> to(&second);
        to = std::move(from);
        EXPECT_EQ(to.Get(), &first);
        const ComPtr<IDispatch> last = std::move(to);
        EXPECT_FALSE(to); // NOLINT(bugprone-use-after-move): a moved-from pointer is empty
        EXPECT_EQ(last.Get(), &first);
    }
    EXPECT_EQ(first.references, 0U);
    EXPECT_EQ(second.references, 0U);
}

TEST(ComPtr, AskingForTheOutPlaceReleasesWhatWasThere) {
    Counted object;
    ComPtr<IDispatch> pointer(&object);
    *pointer.Put() = nullptr;
    EXPECT_EQ(object.references, 0U);
    EXPECT_FALSE(pointer);
}

TEST(ComPtr, DetachingLeavesTheReferenceToTheCaller) {
    Counted object;
    {
        ComPtr<IDispatch> pointer(&object);
        EXPECT_EQ(pointer.Detach(), &object);
    }
    EXPECT_EQ(object.references, 1U);
}

TEST(OwnedBstr, HoldsACopyOfTheText) {
    const OwnedBstr text = OwnedBstr::Copy(L"Label A");
    EXPECT_STREQ(text.Get(), L"Label A");
    EXPECT_EQ(SysStringLen(text.Get()), 7U);
}

TEST(OwnedBstr, AnEmptyTextIsNotNull) {
    const OwnedBstr text = OwnedBstr::Copy(L"");
    ASSERT_NE(text.Get(), nullptr);
    EXPECT_EQ(SysStringLen(text.Get()), 0U);
}

TEST(OwnedBstr, NoneIsNullAndReadsAsEmpty) {
    const OwnedBstr none;
    EXPECT_EQ(none.Get(), nullptr);
    EXPECT_STREQ(none.Text(), L"");
}

TEST(OwnedBstr, ATextThatCannotBeAllocatedIsNull) {
    // More than a BSTR can count; the text itself is never read.
    EXPECT_FALSE(OwnedBstr::Copy(std::wstring_view(L"", 0x7FFFFFFF)));
    EXPECT_TRUE(OwnedBstr::Copy(L""));
}

TEST(OwnedBstr, MovesAndDetaches) {
    OwnedBstr from = OwnedBstr::Copy(L"one");
    OwnedBstr to = std::move(from);
    EXPECT_STREQ(to.Text(), L"one");
    OwnedBstr other = OwnedBstr::Copy(L"two");
    other = std::move(to);
    EXPECT_STREQ(other.Text(), L"one");
    BSTR detached = other.Detach();
    EXPECT_EQ(other.Get(), nullptr);
    EXPECT_STREQ(detached, L"one");
    *other.Put() = detached;
    EXPECT_STREQ(other.Text(), L"one");
}

TEST(OwnedVariant, IsEmptyAtFirst) {
    EXPECT_EQ(OwnedVariant().Get().vt, VT_EMPTY);
}

TEST(OwnedVariant, AnObjectHasAReferenceOfItsOwn) {
    Counted object;
    {
        const OwnedVariant value(&object);
        EXPECT_EQ(value.Get().vt, VT_DISPATCH);
        EXPECT_EQ(value.Get().pdispVal, &object);
        EXPECT_EQ(object.references, 2U);
    }
    EXPECT_EQ(object.references, 1U);
}

TEST(OwnedVariant, GivesOutItsPlaceAndItsValue) {
    Counted object;
    OwnedVariant value(&object);
    EXPECT_EQ(value.Put()->vt, VT_EMPTY);
    EXPECT_EQ(object.references, 1U);
    value.Put()->vt = VT_I4;
    EXPECT_EQ(value.Get().vt, VT_I4);
    OwnedVariant other(&object);
    OwnedVariant taker;
    *taker.Put() = other.Detach();
    EXPECT_EQ(other.Get().vt, VT_EMPTY);
    EXPECT_EQ(taker.Get().pdispVal, &object);
    EXPECT_EQ(object.references, 2U);
}

TEST(OwnedVariant, TheOmittedArgumentIsTheStandardError) {
    const OwnedVariant omitted = OwnedVariant::Omitted();
    EXPECT_EQ(omitted.Get().vt, VT_ERROR);
    EXPECT_EQ(static_cast<unsigned long>(omitted.Get().scode), 0x80020004UL);
}

} // namespace
