# SPDX-License-Identifier: MIT
# Run by cpack before it packs. Folders are made with the maker's umask, and a strict one would close
# them to the users of the machine on which the package is installed.
file(CHMOD_RECURSE ${CPACK_TEMPORARY_DIRECTORY}
    DIRECTORY_PERMISSIONS
        OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
