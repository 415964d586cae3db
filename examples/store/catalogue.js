// The catalogue of the sample store.
'use strict';

const kCategories = {
  discover: 'Discover',
  mine: 'My applications',
  office: 'Office',
  create: 'Create',
  team: 'Team',
  tools: 'Tools',
  computer: 'On this computer',
};

const kFeatured = 'easel';

// `required` applications are subscribed on the first visit. A glyph is an SVG path in a view box of
// 24 by 24.
const kCatalogue = [
  {id: 'letters', name: 'Letters', publisher: 'Northwind Office', category: 'office', required: true,
   summary: 'Mail with every account in one place', colors: ['#4f8cff', '#2356d8'],
   glyph: 'M3 6h18v12H3zM3.5 7l8.5 7 8.5-7'},
  {id: 'agenda', name: 'Agenda', publisher: 'Northwind Office', category: 'office', required: true,
   summary: 'Appointments, rooms and reminders', colors: ['#ff7a6b', '#d9364f'],
   glyph: 'M4 6h16v14H4zM4 10.5h16M8.5 3.5v5M15.5 3.5v5'},
  {id: 'notebook', name: 'Notebook', publisher: 'Northwind Office', category: 'office', required: true,
   summary: 'Notes that find themselves again', colors: ['#ffc24b', '#f08a17'],
   glyph: 'M6 3h12v18H6zM9.5 8h5M9.5 12h5M9.5 16h3'},
  {id: 'atlas', name: 'Atlas', publisher: 'Meridian', category: 'tools',
   summary: 'Maps, routes and places', colors: ['#3fd08f', '#0f9a68'],
   glyph: 'M12 21c-4-5-6.2-8-6.2-11a6.2 6.2 0 0 1 12.4 0c0 3-2.2 6-6.2 11zM12 7.7a2.3 2.3 0 1 0 0 4.6 2.3 2.3 0 0 0 0-4.6z'},
  {id: 'ledger', name: 'Ledger', publisher: 'Northwind Office', category: 'office',
   summary: 'Tables that calculate', colors: ['#34c3a0', '#0d7f74'],
   glyph: 'M4 4h16v16H4zM4 9.5h16M4 14.7h16M10 4v16'},
  {id: 'easel', name: 'Easel', publisher: 'Studio Five', category: 'create',
   summary: 'Draw, sketch and annotate, alone or with others at the same sheet', colors: ['#b07bff', '#7a3fe0'],
   glyph: 'M4 20l1-5L16 4l4 4L9 19zM13.2 6.8l4 4'},
  {id: 'darkroom', name: 'Darkroom', publisher: 'Studio Five', category: 'create',
   summary: 'Develop and arrange photographs', colors: ['#6b7a99', '#333f5c'],
   glyph: 'M4 7.5h4l2-3h4l2 3h4V19H4zM12 9.8a3.4 3.4 0 1 0 0 6.8 3.4 3.4 0 0 0 0-6.8z'},
  {id: 'octave', name: 'Octave', publisher: 'Studio Five', category: 'create',
   summary: 'Record and mix sound', colors: ['#ff6fb1', '#d1297f'],
   glyph: 'M9 18V5.5l10-2V16M9 18a2.8 2.8 0 1 1-5.6 0A2.8 2.8 0 0 1 9 18zM19 16a2.8 2.8 0 1 1-5.6 0 2.8 2.8 0 0 1 5.6 0z'},
  {id: 'forum', name: 'Forum', publisher: 'Meridian', category: 'team',
   summary: 'Meetings with picture and sound', colors: ['#45b8ff', '#0b7fd0'],
   glyph: 'M3 7h11.5v10H3zM14.5 11.2L21 7.5v9l-6.5-3.7z'},
  {id: 'relay', name: 'Relay', publisher: 'Meridian', category: 'team',
   summary: 'Messages for the whole team', colors: ['#8a8cff', '#4a4be0'],
   glyph: 'M4 5h16v11h-8l-5 4v-4H4zM8 9h8M8 12.3h5'},
  {id: 'docket', name: 'Docket', publisher: 'Meridian', category: 'team',
   summary: 'Who does what until when', colors: ['#7ccf4d', '#3f9a1f'],
   glyph: 'M4 6.2l2 2L9.5 4M4 13.2l2 2 3.5-4.2M12.5 6.5H20M12.5 13.5H20M4.5 19.5H20'},
  {id: 'shell', name: 'Shell', publisher: 'Toolwright', category: 'tools',
   summary: 'A terminal on the remote desktop', colors: ['#5b6472', '#23282f'],
   glyph: 'M3 5h18v14H3zM7 9.2l3 2.8-3 2.8M12.5 15H17'},
  {id: 'gauge', name: 'Gauge', publisher: 'Toolwright', category: 'tools',
   summary: 'What the machines are doing', colors: ['#ff9a56', '#e05a1c'],
   glyph: 'M4 4v16h16M8.5 16v-4M12.5 16V7.5M16.5 16v-6'},
  {id: 'strongbox', name: 'Strongbox', publisher: 'Toolwright', category: 'tools',
   summary: 'Keys and passwords, locked away', colors: ['#e0b34a', '#a97c12'],
   glyph: 'M5 11h14v9H5zM8 11V8a4 4 0 0 1 8 0v3M12 14.5v2.2'},
  {id: 'podium', name: 'Podium', publisher: 'Northwind Office', category: 'office',
   summary: 'Slides for every audience', colors: ['#ff8f5c', '#d84f2a'],
   glyph: 'M3.5 4.5h17v11h-17zM12 15.5V18M8 20.5l4-2.5 4 2.5M8 12l3-3 2 2 3.5-3.5'},
];

// Files in documents/.
const kDocuments = [
  {name: 'Budget 2027.csv', kind: 'Table', color: '#0f9a68',
   glyph: 'M4 4h16v16H4zM4 9.5h16M4 14.7h16M10 4v16'},
  {name: 'Minutes of the board.txt', kind: 'Text', color: '#2356d8',
   glyph: 'M6 3h12v18H6zM9.5 8h5M9.5 12h5M9.5 16h3'},
  {name: 'Floor plan.svg', kind: 'Drawing', color: '#7a3fe0',
   glyph: 'M4 4h16v16H4zM4 12h6M14 12h6M12 4v5M12 15v5'},
];
