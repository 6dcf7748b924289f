# For Doxygen: the comments of a header are its documentation, and the one above the namespace that
# of the file. The hold space is not empty once that has begun.
1,/^namespace/ {
    /^\/\// {
        x
        /^$/ { s/^/begun/; x; s|^//|/// @file\n///|; x; }
        x
    }
}
s|^\( *\)// |\1/// |
s|^\( *\)//$|\1///|
s|\([;{,]\)  *// |\1  ///< |
