# What every target of ours is compiled with. Targets link Varnholt::Common
# PRIVATE, so that none of it reaches a project that embeds the module.

add_library(varnholt_common INTERFACE)
add_library(Varnholt::Common ALIAS varnholt_common)

target_compile_options(varnholt_common INTERFACE
    -Wall
    -Wextra
    -Wpedantic
    -Wcast-align
    -Wnon-virtual-dtor
    -Woverloaded-virtual
    -Wshadow
    -fvisibility=hidden
    -fvisibility-inlines-hidden
    $<$<BOOL:${VARNHOLT_WERROR}>:-Werror>
    # Two builds of a commit give the same bytes wherever they are made.
    $<BUILD_INTERFACE:$<$<CONFIG:Release>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>>
    # Qt's logging macros are called with nothing behind the category.
    $<$<CXX_COMPILER_ID:Clang,AppleClang>:-Wno-gnu-zero-variadic-macro-arguments>
    # Unique symbols would pin a loaded module in memory, images and all.
    $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>
)

target_compile_definitions(varnholt_common INTERFACE
    QT_NO_CAST_TO_ASCII
    QT_NO_KEYWORDS
    QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
    QT_DEPRECATED_WARNINGS
)

# What nearly every source of the tools and tests includes, and most of their compile time. The
# module's sources are compiled without it.
set(varnholt_common_headers
    <QtCore>
    <functional>
    <map>
    <memory>
    <optional>
    <string>
    <vector>
)

if(VARNHOLT_SANITIZE)
  target_compile_options(varnholt_common INTERFACE
      -fsanitize=${VARNHOLT_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(varnholt_common INTERFACE -fsanitize=${VARNHOLT_SANITIZE})
endif()

# Qt's libraries are not instrumented: every program brings along what tells of their locks and events.
if(VARNHOLT_SANITIZE STREQUAL "thread")
  find_package(Qt5Core 5.15 REQUIRED COMPONENTS Private)
  add_library(varnholt_qt_for_tsan OBJECT
      ${PROJECT_SOURCE_DIR}/Tests/Support/QtEventsForThreadSanitizer.cpp
      ${PROJECT_SOURCE_DIR}/Tests/Support/QtLocksForThreadSanitizer.cpp)
  target_include_directories(varnholt_qt_for_tsan PRIVATE ${PROJECT_SOURCE_DIR})
  set_target_properties(varnholt_qt_for_tsan PROPERTIES AUTOMOC OFF)
  target_link_libraries(varnholt_qt_for_tsan PRIVATE Qt5::CorePrivate)
  target_sources(varnholt_common INTERFACE
      $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:$<TARGET_OBJECTS:varnholt_qt_for_tsan>>)
  target_link_libraries(varnholt_common INTERFACE ${CMAKE_DL_LIBS})
endif()
