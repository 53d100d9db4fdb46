  # language: fr
  @étiquette @deux
	Fonctionnalité: des lieux
    Étant donné ceci n'est pas une étape
    Contexte:
      Étant donné que les colonnes comptent
      Étant données deux lignes
    Plan du scénario: é
      Et qu'il y a <a>
      * rien
      Exemples:
        |  é |𝄞|	b|
