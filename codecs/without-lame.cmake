# libsndfile has MPEG audio only together with an encoder. Nothing here encodes: an empty library stands for
# it, and libsndfile-decode-only.patch takes the encoder's code out.
add_library(mp3lame::mp3lame INTERFACE IMPORTED GLOBAL)
