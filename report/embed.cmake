# cmake -DOUT=FILE "-DNAMES=name;..." "-DFILES=path;..." -P embed.cmake: writes a C++ source with the
# contents of files. A name may come several times: its files follow each other.
set(previous "")
set(source "#include \"report/resources.h\"\n\nnamespace tarnex::report::resources\n{\n\n")
set(unique ${NAMES})
list(REMOVE_DUPLICATES unique)
foreach(name IN LISTS unique)
    set(bytes "")
    foreach(known file IN ZIP_LISTS NAMES FILES)
        if(known STREQUAL name)
            file(READ "${file}" more HEX)
            string(APPEND bytes "${more}")
        endif()
    endforeach()
    # An array, since compilers need not take a literal of any length.
    string(REGEX REPLACE "(..)" "'\\\\x\\1'," bytes "${bytes}")
    string(REGEX REPLACE "('\\\\x..',)('\\\\x..',)('\\\\x..',)('\\\\x..',)" "\\1\\2\\3\\4\n" bytes
        "${bytes}")
    string(APPEND source "static const char ${name}Bytes[] = {\n${bytes}};\n"
        "const std::string_view ${name}{${name}Bytes, sizeof ${name}Bytes};\n")
endforeach()
file(WRITE "${OUT}" "${source}\n} // namespace tarnex::report::resources\n")
