set(SANITIZE "" CACHE STRING "Sanitizers for everything that is built, comma-separated (address, undefined, thread)")

if(SANITIZE)
  add_compile_options(-fsanitize=${SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${SANITIZE})
endif()
