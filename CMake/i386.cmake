# 32-bit x86 with the multilib of the host's compiler.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_COMPILER gcc)
set(CMAKE_CXX_COMPILER g++)
# The kernel's headers, which both x86 have in common: Debian's package that links them into /usr/include can't be
# installed beside cross compilers.
set(theFlags "-m32 -idirafter /usr/include/x86_64-linux-gnu")
set(CMAKE_C_FLAGS_INIT ${theFlags})
set(CMAKE_CXX_FLAGS_INIT ${theFlags})
