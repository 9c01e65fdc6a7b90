// What acg doctor says, in English and French. Both stand beside each other; a blank that may not break is
// set when a text is shown.
#pragma once

namespace acg::tool
{

struct DoctorText {
    const char* English;
    const char* French;
};

/// One thing that is checked.
struct DoctorStep {
    const char* Name; ///< for --json; the same in both languages
    DoctorText Title;
};

namespace steps
{

inline constexpr DoctorStep Class = {"class",
                                     {"The class is registered", //
                                      "La classe est inscrite dans le registre"}};
inline constexpr DoctorStep File = {"file",
                                    {"The component's file is there", //
                                     "Le fichier du composant est présent"}};
inline constexpr DoctorStep TypeLibrary = {
    "type library",
    {"The type library is registered", "La bibliothèque de types est inscrite dans le registre"}};
inline constexpr DoctorStep Component = {"component",
                                         {"The component loads, and its type library with it",
                                          "Le composant se charge, avec sa bibliothèque de types"}};
inline constexpr DoctorStep Hosts64 = {
    "64-bit programs",
    {"64-bit programs can use the component", "Les programmes 64 bits peuvent utiliser le composant"}};
inline constexpr DoctorStep Manifest = {
    "manifest",
    {"A manifest serves in place of registration", "Un manifeste remplace l'inscription dans le registre"}};
inline constexpr DoctorStep Library = {"reader library",
                                       {"The reader library loads", //
                                        "La bibliothèque du lecteur se charge"}};
inline constexpr DoctorStep Functions = {
    "functions",
    {"The reader library has all its functions", "La bibliothèque du lecteur a toutes ses fonctions"}};
inline constexpr DoctorStep Opening = {"opening",
                                       {"The reader opens", //
                                        "Le lecteur s'ouvre"}};
inline constexpr DoctorStep Type = {"reader type",
                                    {"The reader names its type", //
                                     "Le lecteur indique son type"}};
inline constexpr DoctorStep Card = {"card",
                                    {"A card is in the field", //
                                     "Une carte est présente"}};

} // namespace steps

namespace texts
{

// The report.
inline constexpr DoctorText Ok = {"ok", "ok"};
inline constexpr DoctorText Failed = {"FAILED", "ÉCHEC"};
inline constexpr DoctorText No = {"no", "non"};
inline constexpr DoctorText Colon = {": ", " : "};
inline constexpr DoctorText Remedy = {"remedy: ", "remède : "};
inline constexpr DoctorText More = {"more on failures: ", "plus d'informations : "};
inline constexpr DoctorText Page = {"install-en.html", "install-fr.html"};

// What isn't set up.
inline constexpr DoctorText NotSetUp7 = {"not set up (step 7)", "non configuré (étape 7)"};
inline constexpr DoctorText NotSetUp1 = {"not set up (step 1)", "non configuré (étape 1)"};
inline constexpr DoctorText NotSetUp5 = {"not set up (step 5)", "non configuré (étape 5)"};
inline constexpr DoctorText No64 = {"not needed, this Windows is a 32-bit one",
                                    "inutile, ce Windows est en 32 bits"};
inline constexpr DoctorText HostIs64 = {"not for a 64-bit program, which needs step 5",
                                        "pas pour un programme 64 bits, qui exige l'étape 5"};

// Details.
inline constexpr DoctorText Is64 = {"it is a 64-bit file", "c'est un fichier 64 bits"};
inline constexpr DoctorText Missing = {"missing in the registry: ", "absent du registre : "};
inline constexpr DoctorText Missing32 = {"missing in the 32-bit registry: ", "absent du registre 32 bits : "};
inline constexpr DoctorText Missing64 = {"missing in the 64-bit registry: ", "absent du registre 64 bits : "};
inline constexpr DoctorText NoFile = {", there is no file ", ", fichier absent : "};
inline constexpr DoctorText NoAnswer = {"no answer for 20 seconds", "pas de réponse pendant 20 secondes"};
inline constexpr DoctorText NotIn = {"not found in ", "absente de "};
inline constexpr DoctorText LoaderPath = {"the system's loader path", "le chemin du chargeur du système"};
inline constexpr DoctorText Simulated = {
    "; the simulator is loaded, no real reader is used",
    " ; c'est celle du lecteur simulé, aucun lecteur réel n'est utilisé"};
inline constexpr DoctorText Lacks = {"it lacks", "il manque"};
inline constexpr DoctorText In = {", in ", ", dans "};
inline constexpr DoctorText SystemError = {", system error ", ", erreur système "};
inline constexpr DoctorText NoType = {"it returns none", "il n'en indique aucun"};
inline constexpr DoctorText NoCard = {"no card", "aucune carte"};

// Remedies.
inline constexpr DoctorText Register = {
    "register ACG_MultiISO_TV.dll with the 32-bit regsvr32, as administrator",
    "inscrivez ACG_MultiISO_TV.dll dans le registre avec le regsvr32 32 bits, en tant qu'administrateur"};
inline constexpr DoctorText Unpack = {
    "unpack ACG_MultiISO_TV.dll to that place again, or register it where it is now",
    "décompressez de nouveau ACG_MultiISO_TV.dll à cet endroit, ou inscrivez-le dans le registre là où il se "
    "trouve"};
inline constexpr DoctorText Damaged = {
    "the file is damaged, or something keeps it from loading: unpack it again",
    "le fichier est endommagé, ou quelque chose l'empêche de se charger : décompressez-le de nouveau"};
inline constexpr DoctorText Import = {
    "import 64-bit-hosts.reg again, as administrator, with the 64-bit reg",
    "importez de nouveau 64-bit-hosts.reg, en tant qu'administrateur, avec le reg 64 bits"};
inline constexpr DoctorText DeleteKey = {
    "delete that key from the 64-bit registry: a 64-bit program can't load the 32-bit file",
    "supprimez cette clé du registre 64 bits : un programme 64 bits ne peut pas charger le fichier 32 bits"};
inline constexpr DoctorText EndSurrogate = {
    "end dllhost.exe in the Task Manager, or restart Windows, and try again",
    "terminez dllhost.exe dans le Gestionnaire des tâches, ou redémarrez Windows, puis réessayez"};
inline constexpr DoctorText PutManifest = {
    "put ACG_MultiISO_TV.dll and its manifest beside the program again, from the same package",
    "placez de nouveau ACG_MultiISO_TV.dll et son manifeste, issus du même paquet, à côté du programme"};
inline constexpr DoctorText PutLibrary = {
    "put the vendor's ACGReader330 (without a reader: the simulated one) into ",
    "placez la bibliothèque ACGReader330 du fabricant (sans lecteur : celle du lecteur simulé) dans "};
inline constexpr DoctorText Take = {
    "use the ACGReader330 that belongs to this component; on Windows it is a 32-bit file",
    "utilisez la bibliothèque ACGReader330 qui correspond à ce composant ; sous Windows, c'est un fichier 32 "
    "bits"};
inline constexpr DoctorText Reinstall = {
    "it is damaged, or needs a library that isn't there: reinstall it",
    "elle est endommagée, ou il lui manque une bibliothèque : réinstallez-la"};
inline constexpr DoctorText Update = {"install the update KB2533623 of Windows 7",
                                      "installez la mise à jour KB2533623 de Windows 7"};
inline constexpr DoctorText Device = {
    "is Device right (for example: --reader Device=com3)? Is another program using the reader?",
    "le port est-il le bon (par exemple : --reader Device=com3) ? Un autre programme utilise-t-il le lecteur "
    "?"};
inline constexpr DoctorText Cable = {
    "check the reader's power and cable; then Device, Baud rate, Autodetect",
    "vérifiez l'alimentation et le câble du lecteur, puis Device, Baud rate et Autodetect"};
inline constexpr DoctorText Switch = {"switch the reader off and on", //
                                      "éteignez le lecteur, puis rallumez-le"};
inline constexpr DoctorText OneCard = {"place one card on the reader, and hold it still",
                                       "posez une seule carte sur le lecteur, sans la bouger"};

} // namespace texts

} // namespace acg::tool
