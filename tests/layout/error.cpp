#include "error/error.h"

#include "layout/agreed.h"

TEST(Layout, Error)
{
    expectAgreed<void()>(errorInit, printErrorStack, errorDestroy);
    expectAgreed<void(GravityLevel, const char *, ...)>(addError);
    expectAgreed<ErrorList>(&errorManager);
    static_cast<void>(ErrorList{.size = 0, .top = 0, .list = nullptr});
    static_cast<void>(ErrorElem{.gravity = INFO, .message = {}});
}
