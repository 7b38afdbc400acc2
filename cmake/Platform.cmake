# What the simulator and zserial-gang need of the operating system: pseudo-terminals, and events as
# descriptors that an event loop can watch.
include(CheckCXXSymbolExists)
check_cxx_symbol_exists(posix_openpt stdlib.h ZSERIAL_HAS_OPENPT)
check_cxx_symbol_exists(signalfd sys/signalfd.h ZSERIAL_HAS_SIGNALFD)
check_cxx_symbol_exists(timerfd_create sys/timerfd.h ZSERIAL_HAS_TIMERFD)
check_cxx_symbol_exists(inotify_init1 sys/inotify.h ZSERIAL_HAS_INOTIFY)
set(ZSERIAL_HAS_PSEUDO_TERMINALS OFF)
if(ZSERIAL_HAS_OPENPT AND ZSERIAL_HAS_SIGNALFD AND ZSERIAL_HAS_TIMERFD AND ZSERIAL_HAS_INOTIFY)
    set(ZSERIAL_HAS_PSEUDO_TERMINALS ON)
endif()
