# Where the header puts a comment behind an enumeration of one line, or behind three names of a type,
# Doxygen looks for one in front of each.
s@^(enum .* \};) +///< (.*)@/** \2 */ \1@
s@^    (int|QMutex) ([^,]*), ([^,]*), ([^,;]*); +///< (.*)@/** \5 */ \1 \2; /** \5 */ \1 \3; /** \5 */ \1 \4;@
