# How this project builds: the rules that hold for every target, and one call per folder.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_AUTOMOC ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
include(CheckLinkerFlag)
include(CheckPIESupported)
check_pie_supported()

# Everything that holds for our own code: strict warnings, hardening, sanitizers.
add_library(qiran_flags INTERFACE)
target_include_directories(qiran_flags INTERFACE ${CMAKE_SOURCE_DIR}/src)
target_compile_definitions(
    qiran_flags INTERFACE QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_DISABLE_DEPRECATED_BEFORE=0x060400
)
target_compile_options(
    qiran_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -fstack-protector-strong
)
# GCC 12 sees overlapping copies in any concatenation of std::string when it optimises (its bug 105651).
target_compile_options(qiran_flags INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
target_link_options(qiran_flags INTERFACE -Wl,-z,relro,-z,now)
# The faster linkers of Debian, where one is installed.
foreach(linker mold lld)
    check_linker_flag(CXX -fuse-ld=${linker} QIRAN_LINKS_WITH_${linker})
    if(QIRAN_LINKS_WITH_${linker})
        target_link_options(qiran_flags INTERFACE -fuse-ld=${linker})
        break()
    endif()
endforeach()
if(QIRAN_SANITIZE)
    target_compile_options(
        qiran_flags INTERFACE -fsanitize=address,undefined,fuzzer-no-link -fno-sanitize-recover=all -fno-omit-frame-pointer
    )
    target_link_options(qiran_flags INTERFACE -fsanitize=address,undefined)
elseif(NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
    target_compile_definitions(qiran_flags INTERFACE _FORTIFY_SOURCE=2)
endif()

# What most files read of Qt, and so is read once.
set(QIRAN_LOGIC_HEADERS
    <QByteArray> <QDir> <QElapsedTimer> <QFile> <QList> <QObject> <QString> <QStringList> <QTimer>
    <algorithm> <array> <cmath> <functional> <memory> <optional> <string> <utility> <vector>
)
set(QIRAN_WINDOW_HEADERS
    ${QIRAN_LOGIC_HEADERS}
    <QApplication> <QCloseEvent> <QDialog> <QLabel> <QLineEdit> <QMenuBar> <QPainter> <QPlainTextEdit> <QPushButton>
    <QScreen> <QScrollBar> <QTableView> <QTextBlock> <QVBoxLayout> <QWindow>
)

# qiran_precompile(NAME FIRST headers...)
#
# The headers are precompiled once, for the target called FIRST, and serve all the others that are compiled like it.
function(qiran_precompile NAME FIRST)
    if(NOT QIRAN_PCH)
        return()
    endif()
    if(NAME STREQUAL FIRST)
        target_precompile_headers(${NAME} PRIVATE ${ARGN})
    else()
        target_precompile_headers(${NAME} REUSE_FROM ${FIRST})
    endif()
endfunction()

# qiran_floor(NAME [PLAIN files...] [LOGIC files...] [WINDOWS files...] [STANDS_ON floors...] [QT modules...]
#             [LIBRARIES targets...])
#
# One floor of the program, in up to three libraries: NAME_plain on the standard library alone (optimised in every
# build: its tests take millions of its steps), NAME with the rest of its rules (Qt Core and the modules in QT; no
# windows) and NAME_windows. Each sees the one before it. STANDS_ON names every floor that this one includes from;
# tools/floors holds the two against each other. Windows see the windows below.
function(qiran_floor NAME)
    cmake_parse_arguments(PARSE_ARGV 1 FLOOR "" "" "PLAIN;LOGIC;WINDOWS;STANDS_ON;QT;LIBRARIES")
    add_library(${NAME} STATIC ${FLOOR_LOGIC})
    list(TRANSFORM FLOOR_QT PREPEND Qt6:: OUTPUT_VARIABLE modules)
    target_link_libraries(${NAME} PUBLIC qiran_flags Qt6::Core ${modules} ${FLOOR_STANDS_ON} ${FLOOR_LIBRARIES})
    qiran_precompile(${NAME} foundation ${QIRAN_LOGIC_HEADERS})
    if(FLOOR_PLAIN)
        add_library(${NAME}_plain STATIC ${FLOOR_PLAIN})
        set_target_properties(${NAME}_plain PROPERTIES AUTOMOC OFF)
        target_link_libraries(${NAME}_plain PUBLIC qiran_flags)
        target_compile_options(${NAME}_plain PRIVATE $<$<CONFIG:Debug>:-O2>)
        target_link_libraries(${NAME} PUBLIC ${NAME}_plain)
    endif()
    if(FLOOR_WINDOWS)
        add_library(${NAME}_windows STATIC ${FLOOR_WINDOWS})
        set(below)
        foreach(floor IN LISTS FLOOR_STANDS_ON)
            if(TARGET ${floor}_windows)
                list(APPEND below ${floor}_windows)
            endif()
        endforeach()
        target_link_libraries(${NAME}_windows PUBLIC ${NAME} Qt6::Widgets Qt6::PrintSupport ${below})
        qiran_precompile(${NAME}_windows foundation_windows ${QIRAN_WINDOW_HEADERS})
    endif()
endfunction()

# qiran_tests(FLOOR [PLAIN files...] [QT files...] [WINDOWS files...] [LINKS targets...] [LABEL label])
#
# The tests of one folder, in one program for each kind: PLAIN ones use GoogleTest and no Qt, QT ones Qt Test over the
# floor's logic, WINDOWS ones Qt Test over its windows, on the offscreen platform. A file holds one test class and is
# named after it; its name is that of the test and the program's first argument. The floor's name is their label
# unless another one is given.
function(qiran_tests FLOOR)
    cmake_parse_arguments(PARSE_ARGV 1 TESTS "" "LABEL" "PLAIN;QT;WINDOWS;LINKS")
    if(NOT TESTS_LABEL)
        set(TESTS_LABEL ${FLOOR})
    endif()
    cmake_path(GET CMAKE_CURRENT_SOURCE_DIR FILENAME folder)
    foreach(kind plain qt windows)
        string(TOUPPER ${kind} files)
        set(files ${TESTS_${files}})
        if(NOT files)
            continue()
        endif()
        set(program ${folder}_${kind}_tests)
        add_executable(${program} ${files})
        target_link_libraries(${program} PRIVATE ${kind}_test_main ${TESTS_LINKS})
        if(kind STREQUAL plain)
            set_target_properties(${program} PROPERTIES AUTOMOC OFF)
            target_compile_options(${program} PRIVATE $<$<CONFIG:Debug>:-O2>)
        else()
            target_link_libraries(${program} PRIVATE ${FLOOR})
            qiran_precompile(${program} ${kind}_test_main)
        endif()
        if(kind STREQUAL windows)
            target_link_libraries(${program} PRIVATE ${FLOOR}_windows)
        endif()
        foreach(file IN LISTS files)
            cmake_path(GET file STEM name)
            add_test(NAME ${name} COMMAND ${program} ${name})
            set_tests_properties(
                ${name} PROPERTIES
                LABELS "${TESTS_LABEL}" TIMEOUT 300
                ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8;QTEST_FUNCTION_TIMEOUT=240000"
            )
        endforeach()
    endforeach()
endfunction()

# qiran_fuzz(NAME LINKS targets...)
#
# One libFuzzer target from NAME.cpp with its seeds in corpus/NAME. Its test runs over the seeds and then for
# QIRAN_FUZZ_SECONDS more; what it finds new stays in the build folder. An input that
# takes over one second or 256 MiB fails (the sanitizers' own memory is allowed for: it is kept small, for the call
# stacks that they remember would else pass the limit after some minutes).
function(qiran_fuzz NAME)
    cmake_parse_arguments(PARSE_ARGV 1 FUZZ "" "" "LINKS")
    add_executable(${NAME} ${NAME}.cpp)
    set_target_properties(${NAME} PROPERTIES AUTOMOC OFF)
    target_link_libraries(${NAME} PRIVATE qiran_flags ${FUZZ_LINKS})
    target_link_options(${NAME} PRIVATE -fsanitize=fuzzer)
    add_dependencies(fuzz_targets ${NAME})
    set(found ${CMAKE_CURRENT_BINARY_DIR}/found/${NAME})
    file(MAKE_DIRECTORY ${found})
    add_test(
        NAME ${NAME} COMMAND ${NAME} -max_total_time=${QIRAN_FUZZ_SECONDS} -timeout=1 -malloc_limit_mb=256
                             -rss_limit_mb=512 -print_final_stats=1 -artifact_prefix=${CMAKE_CURRENT_BINARY_DIR}/ ${found}
                             ${CMAKE_CURRENT_SOURCE_DIR}/corpus/${NAME}
    )
    math(EXPR patience "${QIRAN_FUZZ_SECONDS} + 120")
    set_tests_properties(${NAME} PROPERTIES LABELS fuzz TIMEOUT ${patience} ENVIRONMENT "ASAN_OPTIONS=quarantine_size_mb=16:malloc_context_size=2")
endfunction()

# qiran_program(NAME FLOOR name LOGIC files... WINDOWS files... MAIN files... STANDS_ON floors... [QT modules...]
#               SHIPPED files...)
#
# The program itself: its top floor, and the executable NAME in a folder NAME of the build, where the shipped data
# stands beside it so that the folder runs and can be copied as it stands.
function(qiran_program NAME)
    cmake_parse_arguments(PARSE_ARGV 1 PROGRAM "" "FLOOR" "LOGIC;WINDOWS;MAIN;STANDS_ON;QT;SHIPPED")
    qiran_floor(
        ${PROGRAM_FLOOR} LOGIC ${PROGRAM_LOGIC} WINDOWS ${PROGRAM_WINDOWS} STANDS_ON ${PROGRAM_STANDS_ON}
                         QT ${PROGRAM_QT}
    )
    add_executable(${NAME} ${PROGRAM_MAIN})
    target_link_libraries(${NAME} PRIVATE ${PROGRAM_FLOOR}_windows)
    target_link_options(${NAME} PRIVATE -Wl,--as-needed)
    set_target_properties(${NAME} PROPERTIES AUTORCC ON RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/${NAME})
    foreach(pair IN LISTS PROGRAM_SHIPPED)
        string(REPLACE "=" ";" pair ${pair})
        list(GET pair 0 name)
        list(GET pair 1 source)
        configure_file(${CMAKE_SOURCE_DIR}/data/${source} ${CMAKE_BINARY_DIR}/${NAME}/${name} COPYONLY)
    endforeach()
endfunction()
