# The program that README.md shows is the one that is compiled and run.
file(READ ${ROOT}/README.md readme)
file(READ ${ROOT}/examples/embed.cpp program)
string(FIND "${readme}" "```cpp\n${program}```" place)
if(place EQUAL -1)
    message(FATAL_ERROR "README.md does not show examples/embed.cpp as it is")
endif()
