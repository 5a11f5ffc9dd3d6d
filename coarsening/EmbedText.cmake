# Writes the text of IN as the bytes of an array into OUT:
#   cmake -DIN=... -DOUT=... -P EmbedText.cmake
file(READ "${IN}" bytes HEX)
string(REGEX REPLACE "(..)" "0x\\1," bytes "${bytes}")
string(REGEX REPLACE "(................................................................................)" "\\1\n" bytes "${bytes}")
file(WRITE "${OUT}" "${bytes}0\n")
