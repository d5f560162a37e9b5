# The Java development kit: the JNI headers for the library, the compiler for the jar.
find_package(Java 17 COMPONENTS Development Runtime)
if(Java_FOUND AND NOT JAVA_HOME AND NOT DEFINED ENV{JAVA_HOME})
    get_filename_component(javac_path "${Java_JAVAC_EXECUTABLE}" REALPATH)
    get_filename_component(JAVA_HOME "${javac_path}/../.." ABSOLUTE)
endif()
find_package(JNI COMPONENTS JVM)
if(NOT Java_FOUND OR NOT JNI_FOUND)
    message(FATAL_ERROR
        "No Java development kit (17 or later) was found. Install one, for instance with\n"
        "    apt-get install openjdk-17-jdk-headless\n"
        "or point JAVA_HOME at an installed one, and configure again.")
endif()
include(UseJava)
