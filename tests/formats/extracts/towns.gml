Creator "somebody"
graph [
  label "Towns &#38; cities"
  DateObtained "3/02/11"
  hierarchy [ depth [ of 3 ] note "]" ]
  node [
    id 0
    label "Springfield"
    Longitude -89.64371
    Latitude 39.80172
    graphics [ x 1.0 y 2.0 fill "#FF0000" ]
  ]
  node [ id 1 label "Springfield" ]
  node [ id 2 label "Z&#252;rich" Longitude 8.55 Latitude 47.36667 ]
  edge [ source 0 target 1 LinkSpeedUnits "G" LinkSpeedRaw 10000000000.0 ]
  edge [ source 1 target 0 LinkSpeedRaw 2500000000.0 ]
  edge [ source 1 target 2 LinkLabel "Lit fibre" ]
  # a comment
  edge [ source 2 target 2 ]
]
