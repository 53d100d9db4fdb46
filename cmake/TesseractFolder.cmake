# cmake -DFOLDER=... -DARCHITECTURE=x86_64-linux-gnu -P TesseractFolder.cmake
# Makes the folder from which the engine for text recognition is loaded: links to the libraries and
# the data that the system's packages install, and a list of the languages that there is data for.
# Where a package is missing its link leads nowhere; the engine then says which package to install.

set(library_folders /usr/lib/${ARCHITECTURE} /usr/lib64 /usr/lib)
set(data_folders /usr/share/tesseract-ocr/5/tessdata /usr/share/tesseract-ocr/4.00/tessdata
    /usr/share/tessdata)

# Sets the variable to the first file of that name that is there, or to where it ought to be.
function(find_installed variable name)
    foreach(folder IN LISTS ARGN)
        if(EXISTS "${folder}${name}")
            set(${variable} "${folder}${name}" PARENT_SCOPE)
            return()
        endif()
    endforeach()
    list(GET ARGN 0 folder)
    set(${variable} "${folder}${name}" PARENT_SCOPE)
endfunction()

# Leaves a link alone that is right already.
function(link_to target link)
    if(IS_SYMLINK "${link}")
        file(READ_SYMLINK "${link}" present)
        if(present STREQUAL target)
            return()
        endif()
    endif()
    file(REMOVE "${link}")
    file(CREATE_LINK "${target}" "${link}" SYMBOLIC)
endfunction()

find_installed(tesseract /libtesseract.so.5 ${library_folders})
find_installed(leptonica /liblept.so.5 ${library_folders})
find_installed(tessdata "" ${data_folders})
file(MAKE_DIRECTORY "${FOLDER}/lib64")
link_to("${tesseract}" "${FOLDER}/lib64/libtesseract.so")
link_to("${leptonica}" "${FOLDER}/lib64/libleptonica.so")
link_to("${tessdata}" "${FOLDER}/tessdata")

# The English names of the languages, by Tesseract's codes; others are called by their codes.
set(names
    afr=Afrikaans amh=Amharic ara=Arabic asm=Assamese aze=Azerbaijani bel=Belarusian ben=Bengali
    bod=Tibetan bos=Bosnian bre=Breton bul=Bulgarian cat=Catalan ceb=Cebuano ces=Czech
    chi_sim=Chinese_Simplified chi_tra=Chinese_Traditional chr=Cherokee cos=Corsican cym=Welsh
    dan=Danish deu=German div=Dhivehi dzo=Dzongkha ell=Greek eng=English epo=Esperanto est=Estonian
    eus=Basque fao=Faroese fas=Persian fil=Filipino fin=Finnish fra=French fry=Western_Frisian
    gla=Scottish_Gaelic gle=Irish glg=Galician guj=Gujarati hat=Haitian heb=Hebrew hin=Hindi
    hrv=Croatian hun=Hungarian hye=Armenian iku=Inuktitut ind=Indonesian isl=Icelandic ita=Italian
    jav=Javanese jpn=Japanese kan=Kannada kat=Georgian kaz=Kazakh khm=Khmer kir=Kyrgyz kor=Korean
    lao=Lao lat=Latin lav=Latvian lit=Lithuanian ltz=Luxembourgish mal=Malayalam mar=Marathi
    mkd=Macedonian mlt=Maltese mon=Mongolian mri=Maori msa=Malay mya=Burmese nep=Nepali nld=Dutch
    nor=Norwegian oci=Occitan ori=Odia pan=Punjabi pol=Polish por=Portuguese pus=Pashto que=Quechua
    ron=Romanian rus=Russian san=Sanskrit sin=Sinhala slk=Slovak slv=Slovenian snd=Sindhi
    spa=Spanish sqi=Albanian srp=Serbian sun=Sundanese swa=Swahili swe=Swedish syr=Syriac tam=Tamil
    tat=Tatar tel=Telugu tgk=Tajik tha=Thai tir=Tigrinya ton=Tongan tur=Turkish uig=Uyghur
    ukr=Ukrainian urd=Urdu uzb=Uzbek vie=Vietnamese yid=Yiddish yor=Yoruba)

file(GLOB data_files "${FOLDER}/tessdata/*.traineddata")
list(SORT data_files)
set(languages "")
# What the small data files of the packages can be used in; large ones hold the older engine, too.
set(modes LSTM)
foreach(file IN LISTS data_files)
    get_filename_component(code "${file}" NAME_WE)
    # Finds out how a page lies; it reads nothing.
    if(code STREQUAL "osd")
        continue()
    endif()
    set(name ${code})
    foreach(entry IN LISTS names)
        if(entry MATCHES "^${code}=(.*)$")
            string(REPLACE "_" " " name ${CMAKE_MATCH_1})
        endif()
    endforeach()
    string(APPEND languages
        "    <language code=\"${code}\" recordedName=\"${name}\" displayName=\"${name}\"/>\n")
endforeach()
set(text "<languageMap>\n  <languages>\n${languages}  </languages>\n")
string(APPEND text "  <engineModes>${modes}</engineModes>\n</languageMap>\n")
file(CONFIGURE OUTPUT "${FOLDER}/languageNames.xml" CONTENT "${text}" @ONLY)
