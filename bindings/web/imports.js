// What the linker need not look for: the package's JavaScript brings it.
mergeInto(LibraryManager.library, {progress: function() {}});
