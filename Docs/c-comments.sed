# The comments of flarebox.h as Doxygen wants them.
1s,^/\* ,/** @file\n * ,
s,([;,{}] +)/\* ,\1/**< ,
s,^( *)/\* ([^-]),\1/** \2,
