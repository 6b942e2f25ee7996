# Read by CPack once the files of its packages stand ready: what Debian's policy asks of a package and an archive does
# without. Manual pages and changes are packed, and the changes of the package itself are told in Debian's form.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
    return()
endif()

function(pack FILE)
    execute_process(COMMAND gzip -9n ${FILE} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(GLOB_RECURSE pages ${CPACK_TEMPORARY_DIRECTORY}/*.1)
foreach(page IN LISTS pages)
    pack(${page})
endforeach()

string(TIMESTAMP now "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(GLOB_RECURSE changes ${CPACK_TEMPORARY_DIRECTORY}/CHANGELOG.md)
foreach(file IN LISTS changes)
    cmake_path(GET file PARENT_PATH folder)
    cmake_path(GET folder FILENAME package)
    file(RENAME ${file} ${folder}/changelog)
    file(
        WRITE ${folder}/changelog.Debian
        "${package} (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; urgency=medium\n\n"
        "  * Made from the sources of ${CPACK_PACKAGE_VERSION}; changelog.gz tells what is new.\n\n"
        " -- ${CPACK_PACKAGE_CONTACT}  ${now}\n"
    )
    file(CHMOD ${folder}/changelog.Debian PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
    pack(${folder}/changelog)
    pack(${folder}/changelog.Debian)
    cmake_path(SET overrides NORMALIZE ${folder}/../../lintian/overrides)
    file(MAKE_DIRECTORY ${overrides})
    file(CHMOD ${overrides} ${overrides}/.. PERMISSIONS ${CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS})
    configure_file(
        ${CMAKE_CURRENT_LIST_DIR}/lintian-overrides ${overrides}/${package} COPYONLY
        FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ
    )
endforeach()
