# The sanitizers of CORVALT_SANITIZERS, for everything that is compiled from here on, GoogleTest too: the
# thread sanitizer must see every lock.
if(CORVALT_SANITIZERS)
  add_compile_options(-fsanitize=${CORVALT_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${CORVALT_SANITIZERS})
endif()
