# How everything in this project is compiled and linked: target nrmpio_options.
set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
# The build tree is laid out as an installation is, so nothing is relinked between the two.
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)

find_package(Threads REQUIRED)

add_library(nrmpio_options INTERFACE)
target_compile_definitions(nrmpio_options INTERFACE
  _FILE_OFFSET_BITS=64
  $<$<COMPILE_LANGUAGE:CXX>:_GLIBCXX_USE_CXX11_ABI=${NRMPIO_STRING_ABI}>)
target_compile_options(nrmpio_options INTERFACE
  -Wall -Wextra -Wconversion -Wshadow
  -fstack-protector-strong
  "$<$<CONFIG:Release>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>"
  # Nothing in what is shipped tells where it was built.
  "-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.")
target_link_options(nrmpio_options INTERFACE
  LINKER:-z,relro,-z,now,-z,noexecstack)

if(NRMPIO_SANITIZE)
  add_library(nrmpio_sanitize INTERFACE)
  target_compile_options(nrmpio_sanitize INTERFACE
    -fsanitize=${NRMPIO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(nrmpio_sanitize INTERFACE -fsanitize=${NRMPIO_SANITIZE})
  target_link_libraries(nrmpio_options INTERFACE nrmpio_sanitize)
endif()

# A shared library or a program that looks for its own libraries first where `directories` say.
# DT_RPATH, not DT_RUNPATH: it also holds for the libraries that those libraries need.
function(nrmpio_set_rpath target directories)
  string(REPLACE ":" ";" directories "${directories}")
  set_target_properties(${target} PROPERTIES INSTALL_RPATH "${directories}")
  target_link_options(${target} PRIVATE LINKER:--disable-new-dtags)
endfunction()
