log made by the plug-in
