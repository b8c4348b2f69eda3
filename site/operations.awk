# Adds to the comment of each operation that the page has a link that opens the page with it.

BEGIN {
    split("replace insert pushBack remove overrideLayersWith setFPSToFitDurationInSeconds reset " \
        "replaceInLayer insertInLayer pushBackInLayer removeInLayer overrideLayerWith " \
        "fillInLayer loop splitAt splitEach introBodyOutroLayers Rotation change_frame_rate " \
        "stretch_to", names, " ")
    for (i in names)
        untold[names[i]] = 1
}
FILENAME !~ /\/(Animation|Rotation|retime)\.h$/ { # others have operations of the same names
    print
    next
}
/ introSize; +\/\/\/</ { # both sizes are set there
    print $0 " <a class=\"try\" href=\"../index.html#operation=introSize\">" \
        "Try it in the browser</a>"
    next
}
/^ *\/\/\/ / { commented = 1 }
commented && match($0, /[A-Za-z_]+\(/) && !/^ *\/\// {
    name = substr($0, RSTART, RLENGTH - 1)
    if (name in untold) {
        delete untold[name]
        print "    ///\n    /// <a class=\"try\" href=\"../index.html#operation=" name \
            "\">Try it in the browser</a>"
    }
}
!/^ *\/\/\// { commented = 0 }
{ print }
