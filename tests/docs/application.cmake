find_package(tarnvod CONFIG REQUIRED)
target_link_libraries(application PRIVATE tarnvod::tarnvod)
target_compile_options(application PRIVATE -Wall -Wextra -Werror -Wno-unused)
