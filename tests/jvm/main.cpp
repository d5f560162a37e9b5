/* Starts the JVM, then runs the tests in it. */
#include "jvm/jvm_test.h"

#include <array>

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    char checks[] = "-Xcheck:jni", classes[] = "-Djava.class.path=" CLASS_PATH;
    char libraries[] = "-Djava.library.path=" LIBRARY_PATH;
    std::array<JavaVMOption, 3> options{{{checks, {}}, {classes, {}}, {libraries, {}}}};
    JavaVMInitArgs arguments{JNI_VERSION_10, options.size(), options.data(), JNI_FALSE};
    JavaVM *machine = nullptr;
    if (JNI_CreateJavaVM(&machine, reinterpret_cast<void **>(&env), &arguments) != JNI_OK)
        return 1;
    return RUN_ALL_TESTS();
}
