# Writes the header with the line that the NrVersion section holds: version, date, time (UTC).
# SOURCE_DATE_EPOCH, when set, gives date and time.
#   cmake -DVERSION=a.b.c.d -DOUTPUT=FILE -P VersionStamp.cmake
string(TIMESTAMP stamp "%m/%d/%y %H:%M:%S" UTC)
file(WRITE "${OUTPUT}" "#define NR_VERSION_STAMP \"${VERSION} ${stamp}\"\n")
