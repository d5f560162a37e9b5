/* Starts the JVM, then runs the tests in it. */
#include "jvm/jvm_test.h"

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    if (!startJvm(
            {"-Xcheck:jni", "-Djava.class.path=" CLASS_PATH, "-Djava.library.path=" LIBRARY_PATH}))
        return 1;
    return RUN_ALL_TESTS();
}
