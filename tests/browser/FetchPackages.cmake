# Gets what the browser tests need besides the programs of the system.
#
# cmake -DPACKAGES=<package files> -DINTO=<folder> -P FetchPackages.cmake

function(need_program program package)
  find_program(found_${program} ${program} NO_CACHE)
  if(NOT found_${program})
    message(FATAL_ERROR "The report is tested in a browser, and ${program} is "
            "missing.\nOn Debian: apt-get install ${package}")
  endif()
endfunction()

need_program(chromium chromium)
need_program(node nodejs)
need_program(npm npm)

set(package_files package.json package-lock.json .npmrc)
set(wanted "")
foreach(name IN LISTS package_files)
  file(SHA256 "${PACKAGES}/${name}" sum)
  string(APPEND wanted "${sum}\n")
endforeach()

# Written last, so that an interrupted attempt does not count.
set(stamp "${INTO}/installed")
if(EXISTS "${stamp}")
  file(READ "${stamp}" installed)
  if(installed STREQUAL wanted)
    return()
  endif()
endif()

foreach(name IN LISTS package_files)
  file(COPY "${PACKAGES}/${name}" DESTINATION "${INTO}")
endforeach()
execute_process(
  COMMAND npm ci --ignore-scripts --prefer-offline --no-audit --no-fund
  WORKING_DIRECTORY "${INTO}"
  RESULT_VARIABLE status OUTPUT_VARIABLE said ERROR_VARIABLE said)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "npm could not fetch what the browser tests need "
          "(npm ci in ${INTO}):\n${said}")
endif()
file(WRITE "${stamp}" "${wanted}")
