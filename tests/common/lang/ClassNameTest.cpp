#include "common/lang/ClassName.h"

#include <gtest/gtest.h>

#include "common/config/command/Reboot.h"
#include "common/config/command/SetDnsSuffix.h"

class OutsideNamespaces {};

namespace lang_tests {

class Alone {};
class L2 {  // a name that ends in a digit
public:
    class Inner {};
};

}  // namespace lang_tests

namespace {

TEST(ClassName, IsTheWordAndTheQualifiedName) {
    EXPECT_EQ(lang::ClassName(typeid(config::command::Reboot)), "class config::command::Reboot");
    EXPECT_EQ(lang::ClassName(typeid(lang_tests::Alone)), "class lang_tests::Alone");
    EXPECT_EQ(lang::ClassName(typeid(lang_tests::L2::Inner)), "class lang_tests::L2::Inner");
    EXPECT_EQ(lang::ClassName(typeid(OutsideNamespaces)), "class OutsideNamespaces");
}

TEST(ClassName, IsThatOfTheObjectAndNotOfTheReference) {
    const config::command::SetDnsSuffix command;
    const config::command::IConfigureCommand& base = command;
    EXPECT_EQ(lang::ClassName(typeid(base)), "class config::command::SetDnsSuffix");
}

}  // namespace
